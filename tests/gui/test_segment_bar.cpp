// The bar of the loader window.
#include "gui/gui_support.h"
#include "runtime/qt/look.h"
#include "runtime/qt/segment_bar.h"

namespace {

TEST_F(ViewTest, ABarShowsItsSegmentsWhereTheyLie)
{
    GuiShow(PANEL_LOADER);
    auto *bar = GuiWidget<SegmentBar>(PANEL_LOADER, LOADER_BAR);
    GuiDraw(PANEL_LOADER, LOADER_BAR, VIEW_CTRL_SEGMENTS, [](VIEW_Control &c) {
        c.segments = {{0, 0.25, UIS_DIM, ""}, {0.5, 0.75, UIS_GOOD, ""}};
    });
    const QImage image = bar->grab().toImage();
    const auto pixel = [&](double share) {
        return image.pixelColor(static_cast<int>(share * image.width()), image.height() / 2);
    };
    EXPECT_EQ(pixel(0.1), bar->colorOf(UIS_DIM));
    EXPECT_EQ(pixel(0.6), bar->colorOf(UIS_GOOD));
    for (const double share : {0.4, 0.9})
        EXPECT_EQ(pixel(share), bar->palette().color(QPalette::Base)) << share;
}

// Every colour stands out from the ground and from the others.
TEST_F(ViewTest, BarSegmentsCanBeSeenAndToldApart)
{
    GuiShow(PANEL_LOADER);
    auto *bar = GuiWidget<SegmentBar>(PANEL_LOADER, LOADER_BAR);
    const QPalette usual = QApplication::palette();
    QPalette dark(QColor(0x3A, 0x3A, 0x3A), QColor(0x2B, 0x2B, 0x2B));
    dark.setColor(QPalette::Base, QColor(0x1E, 0x1E, 0x1E));
    const unsigned styles[] = {UIS_NORMAL, UIS_DIM, UIS_GOOD, UIS_WARNING};
    for (const QPalette &palette : {usual, dark}) {
        QApplication::setPalette(palette);
        GuiSettle();
        const QColor ground = bar->palette().color(QPalette::Base);
        EXPECT_EQ(palette.color(QPalette::Base), ground);
        for (const unsigned style : styles) {
            EXPECT_GE(QTV_GetContrast(bar->colorOf(style), ground), 2.0) << style;
            for (const unsigned other : styles)
                EXPECT_TRUE(style == other || bar->colorOf(style) != bar->colorOf(other));
        }
    }
    QApplication::setPalette(usual);
    GuiSettle();
}

} // namespace
