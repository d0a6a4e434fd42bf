// The combined archive: several project files in one plain file, each behind a one-line
// header with its size and check value. Written by --make-archive, read by the map
// readers. Every result is a code; no message is shown here.
#ifndef CALENDAR_ARCHIVE_H
#define CALENDAR_ARCHIVE_H

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

constexpr long QAR_FILE_MAX = 0x8000000; // bytes of one member, 128 MiB
constexpr int QAR_NAME_MAX = 1999;       // characters of a member's name
#define QAR_MAGIC "QAR"                  // what an archive begins with

struct QarHeader {
    long index = 0; // position of the member, from 1
    long count = 0; // members in the archive
    long size = 0;  // bytes that follow the header
    uint32_t check = 0;
    std::string name; // as it was given when the archive was made
};

// Reads one header line. 0, or -1: end of the file or no header. Blanks between the
// fields, either case of the hexadecimal digits and a missing last quote are accepted.
int QAR_Get_file_header(std::FILE *file, QarHeader *header);
// Writes one header line. 0, or -1: no file, an index outside 1 .. count, a negative size
// or a name that a header cannot hold.
int QAR_Put_file_header(std::FILE *file, const QarHeader &header);

// A whole file of at most `limit` bytes; what lies behind is not read. 0 or -1.
int QAR_Read_file(const char *fileName, size_t limit, std::string *content, uint32_t *check);
// `size` bytes from an open file, fewer when it ends before. 0, or -1: read error.
int QAR_Read_content(std::FILE *file, size_t size, std::string *content, uint32_t *check);

// Appends a file as member `index` of `count`. 0 or -1.
int QAR_Add_file(std::FILE *archive, const char *fileName, long index, long count);
// Whether a user's files can be members: plain files of at most QAR_FILE_MAX bytes with
// different names and no path, because a reader looks for a bare name. 0, or -1 with a
// sentence that says what is wrong with which of them.
int QAR_CheckMembers(const std::vector<std::string> &fileNames, std::string *message);
// Makes an archive of the files in their order. 0, or -1: an existing archive is untouched.
int QAR_Make(const char *archiveName, const std::vector<std::string> &fileNames);
// The same with arguments PROGRAM -a ARCHIVE FILE...; -1 for fewer than four.
int QAR_Create_archiv(int argumentCount, const char *const *arguments);

// Content of the member of exactly that name. 0, or -1: not found, damaged or truncated.
int QAR_Extract_file(std::string *content, const char *archiveName, const char *memberName);
// The same as a text open for reading, named after the member: its handle, or -1.
int QAR_Extract_txfrw(const char *archiveName, const char *memberName);
// Next member of an open archive: the number of members that follow it, -1: its check
// value does not fit, -2: bad header or unreadable content.
int QAR_Extract(std::string *content, std::string *name, std::FILE *archive);

#endif
