// Everything that paints on a bitmap. Tolmara uses LICE_Blit, LICE_FillRect, LICE_Line, LICE_Circle
// and LICE_FillCircle.
//
// Throughout: a null or empty bitmap, a weight `alpha` of 0 or NaN and a coordinate that is NaN
// paint nothing; all clips to the bitmap, whatever the coordinates. An integer coordinate is the
// centre of a pixel, from the top left. `mode` is an operation LICE_BLIT_MODE_... and flags. A
// colour under LICE_BLIT_USE_ALPHA has `alpha` multiplied by its A / 255 and is then mixed as
// without the flag. Each pixel of one figure is painted once. Angles are radians, 0 pointing up,
// growing clockwise.
#pragma once

#include "graphics/lice/LICE_Bitmap.h"

// Copies w x h pixels from (srcx, srcy) to (dstx, dsty). The bitmaps must not share pixels.
void LICE_Blit(LICE_IBitmap* dest, const LICE_IBitmap* src, int dstx, int dsty, int srcx, int srcy,
               int w, int h, float alpha, int mode);

// Stretches the source rectangle over the destination rectangle; a negative srcw or srch mirrors.
// Nearest pixel, or weighted among four with LICE_BLIT_FILTER_BILINEAR.
void LICE_ScaledBlit(LICE_IBitmap* dest, const LICE_IBitmap* src, int dstx, int dsty, int dstw,
                     int dsth, float srcx, float srcy, float srcw, float srch, float alpha,
                     int mode);

// Draws the whole of src turned by `angle` about its point (srcx, srcy), which comes to lie on
// (dstx, dsty). Here pixel (0, 0) is the square from 0 to 1, so that the middle of a bitmap is
// half its size. LICE_BLIT_FILTER_BILINEAR as above; with LICE_BLIT_USE_ALPHA as well, the
// turned border is smooth.
void LICE_RotatedBlit(LICE_IBitmap* dest, const LICE_IBitmap* src, float dstx, float dsty,
                      float srcx, float srcy, float angle, float alpha, int mode);

void LICE_FillRect(LICE_IBitmap* dest, int x, int y, int w, int h, LICE_pixel color,
                   float alpha = 1.0f, int mode = LICE_BLIT_MODE_COPY);

void LICE_PutPixel(LICE_IBitmap* dest, int x, int y, LICE_pixel color, float alpha = 1.0f,
                   int mode = LICE_BLIT_MODE_COPY);

// 0 outside the bitmap.
LICE_pixel LICE_GetPixel(const LICE_IBitmap* src, int x, int y);

// Both ends are painted. Without antiAlias the ends are rounded down to whole pixels, and the
// pixels are the same in either direction.
void LICE_Line(LICE_IBitmap* dest, float x1, float y1, float x2, float y2, LICE_pixel color,
               float alpha = 1.0f, int mode = LICE_BLIT_MODE_COPY, bool antiAlias = true);

void LICE_Circle(LICE_IBitmap* dest, float cx, float cy, float r, LICE_pixel color,
                 float alpha = 1.0f, int mode = LICE_BLIT_MODE_COPY, bool antiAlias = true);

// Clockwise from minAngle to maxAngle; a full turn or more is the circle.
void LICE_Arc(LICE_IBitmap* dest, float cx, float cy, float r, float minAngle, float maxAngle,
              LICE_pixel color, float alpha = 1.0f, int mode = LICE_BLIT_MODE_COPY,
              bool antiAlias = true);

void LICE_FillCircle(LICE_IBitmap* dest, float cx, float cy, float r, LICE_pixel color,
                     float alpha = 1.0f, int mode = LICE_BLIT_MODE_COPY, bool antiAlias = true);

// The outline of w x h pixels, one pixel wide, and its filled form.
void LICE_RoundRect(LICE_IBitmap* dest, float x, float y, float w, float h, float cornerRadius,
                    LICE_pixel color, float alpha = 1.0f, int mode = LICE_BLIT_MODE_COPY,
                    bool antiAlias = true);
void LICE_FillRoundRect(LICE_IBitmap* dest, float x, float y, float w, float h, float cornerRadius,
                        LICE_pixel color, float alpha = 1.0f, int mode = LICE_BLIT_MODE_COPY,
                        bool antiAlias = true);

// Every pixel whose centre lies inside or on the border; corners beyond +-2^29 are pulled there.
void LICE_FillTriangle(LICE_IBitmap* dest, int x1, int y1, int x2, int y2, int x3, int y3,
                       LICE_pixel color, float alpha = 1.0f, int mode = LICE_BLIT_MODE_COPY);
// `x` and `y` hold n corners in order around the figure.
void LICE_FillConvexPolygon(LICE_IBitmap* dest, const int* x, const int* y, int n, LICE_pixel color,
                            float alpha = 1.0f, int mode = LICE_BLIT_MODE_COPY);
