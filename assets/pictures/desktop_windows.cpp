#include "pictures/desktop_windows.h"

#include "pictures/colour.h"

#include <string>

namespace {

constexpr double kTitleHeight = 38;
constexpr double kCorner = 10;

struct WindowLook {
    const char* title;
    Rgb bar;
    Rgb body;
    Rgb text;
};

void localDrawButtons(const Drawing& desktop, const Box& frame) {
    constexpr unsigned kColours[] = {0xFF6A5E, 0xF6BE4F, 0x62C655};
    double x = frame.x + 20;
    for (const unsigned colour : kColours) {
        cairo_arc(desktop.Pen(), x, frame.y + kTitleHeight / 2, 6, 0, 2 * 3.14159265358979);
        desktop.Colour(Hex(colour));
        cairo_fill(desktop.Pen());
        x += 21;
    }
}

void localDrawWindow(const Drawing& desktop, const Box& frame, const WindowLook& look) {
    desktop.Shadow({frame.x, frame.y + 10, frame.width, frame.height}, kCorner, 34, 0.30);
    desktop.Fill(frame, kCorner, look.body);
    cairo_save(desktop.Pen());
    desktop.Outline(frame, kCorner);
    cairo_clip(desktop.Pen());
    desktop.Fill({frame.x, frame.y, frame.width, kTitleHeight}, 0, Mix(look.bar, Hex(0xFFFFFF), 0.10f),
                 look.bar);
    desktop.Fill({frame.x, frame.y + kTitleHeight - 1, frame.width, 1}, 0, {}, 0.25);
    cairo_restore(desktop.Pen());
    desktop.Outline({frame.x + 0.5, frame.y + 0.5, frame.width - 1, frame.height - 1}, kCorner - 0.5);
    desktop.Colour({}, 0.35);
    cairo_set_line_width(desktop.Pen(), 1);
    cairo_stroke(desktop.Pen());
    localDrawButtons(desktop, frame);
    desktop.Text(frame.x + frame.width / 2, frame.y + 10, look.title,
                 {.font = "DejaVu Sans Bold", .size = 13.5, .colour = look.text, .centred = true});
}

struct TerminalLine {
    unsigned colour;
    const char* text;
};

constexpr TerminalLine kTerminal[] = {
    {0x8BE28B, "ada@harbour:~$ ls pictures"},
    {0xD8DEE9, "aurora.png   harbour.png   lighthouse.png"},
    {0xD8DEE9, "dunes.png    ice.png       orchard.png"},
    {0x8BE28B, "ada@harbour:~$ df -h /home"},
    {0x9AA7BA, "Filesystem   Size  Used Avail Use% Mounted on"},
    {0xD8DEE9, "/dev/sda2    220G   96G  113G  46% /home"},
    {0x8BE28B, "ada@harbour:~$ cal july"},
    {0x7FB4F0, "      July"},
    {0x9AA7BA, "Mo Tu We Th Fr Sa Su"},
    {0xD8DEE9, "       1  2  3  4  5"},
    {0xD8DEE9, " 6  7  8  9 10 11 12"},
    {0xD8DEE9, "13 14 15 16 17 18 19"},
    {0xD8DEE9, "20 21 22 23 24 25 26"},
    {0xD8DEE9, "27 28 29 30 31"},
    {0x8BE28B, "ada@harbour:~$ "},
};

constexpr const char* kLetter =
    "Dear Clara,\n"
    "\n"
    "the lighthouse has been painted at last. From the kitchen window it looks like a "
    "stick of peppermint that somebody left standing in the sea.\n"
    "\n"
    "On Tuesday the whole village came to light the new lamp. It turns once in eight "
    "seconds, and on a clear night it can be seen as far as the islands. The children "
    "counted the turns until they fell asleep on the wall.\n"
    "\n"
    "Bring warm clothes and the good binoculars. The evenings are long now, and after "
    "sunset there is nothing in the sky but stars.\n"
    "\n"
    "Yours, Ada";

// A menu's words, side by side.
void localDrawMenu(const Drawing& desktop, const Box& frame) {
    desktop.Fill({frame.x, frame.y + kTitleHeight, frame.width, 30}, 0, Hex(0xF1EEE8));
    desktop.Fill({frame.x, frame.y + kTitleHeight + 29, frame.width, 1}, 0, Hex(0xD5CFC4));
    double x = frame.x + 18;
    for (const char* word : {"File", "Edit", "View", "Insert", "Format", "Help"}) {
        desktop.Text(x, frame.y + kTitleHeight + 7, word, {.size = 13, .colour = Hex(0x4A443C)});
        x += 22 + 8.2 * static_cast<double>(std::string(word).size());
    }
}

} // namespace

void DrawTerminalWindow(const Drawing& desktop, const Box& frame) {
    localDrawWindow(desktop, frame, {"Terminal", Hex(0x323A48), Hex(0x1A1F29), Hex(0xE4E8EF)});
    double y = frame.y + kTitleHeight + 16;
    for (const TerminalLine& line : kTerminal) {
        desktop.Text(frame.x + 18, y, line.text,
                     {.font = "DejaVu Sans Mono", .size = 15, .colour = Hex(line.colour)});
        y += 22;
    }
    desktop.Fill({frame.x + 18 + 15 * 9.03, y - 22 + 1, 9, 18}, 0, Hex(0xD8DEE9), 0.9);
}

void DrawEditorWindow(const Drawing& desktop, const Box& frame) {
    localDrawWindow(desktop, frame, {"Letter to Clara", Hex(0xDDD7CC), Hex(0xFDFCF9), Hex(0x3A352E)});
    localDrawMenu(desktop, frame);
    desktop.Text(frame.x + 46, frame.y + kTitleHeight + 56, "A letter from the harbour",
                 {.font = "DejaVu Serif Bold", .size = 25, .colour = Hex(0x2B3A52)});
    desktop.Fill({frame.x + 46, frame.y + kTitleHeight + 96, 90, 3}, 0, Hex(0xE08A4A));
    desktop.Text(frame.x + 46, frame.y + kTitleHeight + 118, kLetter,
                 {.font = "DejaVu Serif",
                  .size = 16,
                  .colour = Hex(0x33302B),
                  .width = frame.width - 92,
                  .leading = 1.25});
    const Box status = {frame.x + 1, frame.y + frame.height - 31, frame.width - 2, 30};
    desktop.Fill({status.x, status.y, status.width, 1}, 0, Hex(0xD5CFC4));
    desktop.Text(status.x + 18, status.y + 7, "Page 1 of 1      100 words",
                 {.size = 12.5, .colour = Hex(0x7A7266)});
    desktop.Text(status.x + status.width - 66, status.y + 7, "100 %",
                 {.size = 12.5, .colour = Hex(0x7A7266)});
}
