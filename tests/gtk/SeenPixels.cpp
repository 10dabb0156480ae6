// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/gtk/SeenPixels.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <memory>
#include <stdexcept>

namespace quarner::testing {
namespace {

constexpr unsigned long mostOfAColour = 0xff;

double brightness(unsigned long pixel) {
    constexpr double colours = 3;
    const unsigned long sum =
        (pixel >> 16 & mostOfAColour) + (pixel >> 8 & mostOfAColour) + (pixel & mostOfAColour);
    return static_cast<double>(sum) / (colours * mostOfAColour);
}

void destroy(XImage* image) { image->f.destroy_image(image); }

} // namespace

double brightnessOfScreen(int x, int y, int width, int height) {
    const std::unique_ptr<Display, decltype(&XCloseDisplay)> display(XOpenDisplay(nullptr),
                                                                     &XCloseDisplay);
    if (!display)
        throw std::runtime_error("no display");
    const std::unique_ptr<XImage, decltype(&destroy)> image(
        XGetImage(display.get(), XDefaultRootWindow(display.get()), x, y,
                  static_cast<unsigned>(width), static_cast<unsigned>(height), ~0UL, ZPixmap),
        &destroy);
    double sum = 0;
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column)
            sum += brightness(image->f.get_pixel(image.get(), column, row));
    return sum / (static_cast<double>(width) * height);
}

} // namespace quarner::testing
