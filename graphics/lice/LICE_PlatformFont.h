// The platform's font: one face at one size, as glyph images. Tolmara uses upright text in grey
// levels.
#pragma once

#include <memory>
#include <vector>

// What is asked of a font. The face that is found may be another when the named one is missing.
struct LICE_FontRequest {
  const char* face = "";  // family name; a missing one is replaced by a monospaced one
  int height = 10;        // of the line box, pixels; limited to 2 to 512
  int weight = 400;       // 700 for bold
  bool italic = false;
  int escapement = 0;   // turn of the baseline, tenths of a degree, counterclockwise
  int orientation = 0;  // turn of the characters: always that of the baseline here
  int quality = 0;      // 3: black and white; others: 256 levels
};

// A glyph's coverage, one byte per pixel, rows from the top, and its place relative to the pen.
struct LICE_GlyphImage {
  int left = 0;  // first column, to the right of the pen
  int top = 0;   // first row, upward from the baseline
  int width = 0;
  int height = 0;
  int advance = 0;                      // along the baseline to the next pen position, pixels
  std::vector<unsigned char> coverage;  // width * height
};

// Not synchronised, but independent of every other font: any thread, one at a time.
class LICE_PlatformFont {
 public:
  // Null when no font file at all can be found or read.
  static std::unique_ptr<LICE_PlatformFont> Create(const LICE_FontRequest& request);
  virtual ~LICE_PlatformFont() = default;

  virtual int LineHeight() const = 0;  // pixels: the height asked for
  virtual int Baseline() const = 0;    // rows from the top of the line box to the baseline
  virtual double Turn() const = 0;     // of the baseline, radians, counterclockwise
  // An empty image for what can't be drawn.
  virtual LICE_GlyphImage Render(char32_t character) = 0;
};
