// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/readable_colour.h"

#include <algorithm>
#include <cmath>

namespace quillbox {
namespace {

constexpr double kReadable = 4.5;
constexpr int kSteps = 50;

/// Relative luminance of an sRGB colour.
double Luminance(const wxColour& colour) {
  const auto linear = [](unsigned char channel) {
    const double share = channel / 255.0;
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.Red()) + 0.7152 * linear(colour.Green()) + 0.0722 * linear(colour.Blue());
}

wxColour Mixed(const wxColour& colour, const wxColour& with, int step) {
  const auto mix = [step](int from, int to) { return static_cast<unsigned char>(from + (to - from) * step / kSteps); };
  return wxColour(mix(colour.Red(), with.Red()), mix(colour.Green(), with.Green()), mix(colour.Blue(), with.Blue()));
}

}  // namespace

double Contrast(const wxColour& a, const wxColour& b) {
  const auto [darker, lighter] = std::minmax({Luminance(a), Luminance(b)});
  return (lighter + 0.05) / (darker + 0.05);
}

// NOLINTNEXTLINE(bugprone-easily-swappable-parameters): a colour on a background is the usual order
wxColour Readable(const wxColour& colour, const wxColour& background) {
  const wxColour black(0, 0, 0);
  const wxColour white(255, 255, 255);
  const wxColour away = Contrast(black, background) > Contrast(white, background) ? black : white;
  wxColour shade = colour;
  for (int step = 1; step <= kSteps && Contrast(shade, background) < kReadable; ++step) {
    shade = Mixed(colour, away, step);
  }
  return shade;
}

}  // namespace quillbox
