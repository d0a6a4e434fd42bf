// A program of one window, for the model without the rest of the program, and a view that
// does nothing by itself: a test fetches and posts, on this thread or on another.
#ifndef TESTS_MODEL_SMALL_TABLES_H
#define TESTS_MODEL_SMALL_TABLES_H

enum { WINDOW = 1 };
enum { FIELD = 1, LIST, BOX, SWITCH, BUTTON, TIMER, COUNT, OTHER_TIMER };
enum { MENU = 1, ITEM_STOP = 10, ITEM_END };

// What the callbacks of the tables do; each test sets what it needs, null = nothing.
struct Program {
    int (*onControl)(int control, int event, int data) = nullptr;
    void (*onItem)(int item) = nullptr;
    void (*onTick)(int timer) = nullptr;
    void (*onWake)() = nullptr; // the view's
};
extern Program program;

#endif
