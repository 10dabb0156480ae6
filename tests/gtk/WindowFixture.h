// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/cli/program/HostFixture.h"
#include "tests/gtk/SeenWidget.h"
#include "tests/gtk/VirtualDesktop.h"

namespace quarner::testing {

/// For a test of the real window on a virtual desktop. It is found as assistive programs find it,
/// and used as a person uses it: with the pointer and the keyboard.
class WindowTest : public HostFixture {
protected:
    WindowTest();

    /// Starts the program with arguments, and waits until its window is there.
    void start(const std::vector<std::string>& arguments = {}, HostSettings settings = {});

    /// Waits until a condition holds, and fails the test, with what the window shows, if that takes
    /// more than half a minute.
    void waitUntil(const std::function<bool()>& condition, const std::string& what) const;

    /// A visible widget of the program by its name, and its role if one is given; waits for it.
    SeenWidget find(const std::string& name, const std::string& role = {}) const;
    bool isThere(const std::string& name, const std::string& role = {}) const;
    SeenWidget program() const;

    void click(const std::string& name, const std::string& role = {}) const;
    /// Clicks once the widget can be used.
    void clickWhenReady(const std::string& name, const std::string& role = {}) const;
    /// Does the same without the pointer: another click so soon may be taken for a double click.
    void activateWhenReady(const std::string& name, const std::string& role) const;
    void click(const SeenWidget& widget, const std::string& windowTitle) const;
    void doubleClick(const SeenWidget& widget) const;
    static void press(const std::string& keys); ///< "ctrl+z"
    static void type(const std::string& text);

    /// The titles of the rows of the list, in their order.
    std::vector<std::string> rows() const;
    void waitForRows(const std::vector<std::string>& titles) const;
    SeenWidget row(const std::string& title) const;
    /// Drags a row to above or below another one.
    void dragRow(const std::string& title, const std::string& to, bool below) const;
    /// Drags files from another program to a widget of the window.
    void dropFiles(const std::vector<std::string>& paths, const SeenWidget& target);

    /// With it, an image "mix" is not written to while the file `gate` exists.
    HostSettings gated() const;
    const std::string gate = folder.file("gate");

    /// Opens the dialogue for an image.
    void openImageDialogue() const;
    /// Chooses an image through the menu and the dialogue of the desktop.
    void chooseImage(const std::string& path) const;
    /// Types the path into the dialogue for an image, which is about to come.
    void fillDialogue(const std::string& path) const;
    /// Types the path into a dialogue for files or folders, which is about to come.
    void enterInDialogue(const std::string& dialogue, const std::string& path) const;

    // In the language of the test
    std::string title = "Burn a Disc"; ///< of the window
    std::string imageDialogue = "Burn to an Image";
    std::string titleField = "Title of the disc";

    struct Point {
        int x = 0;
        int y = 0;
    };
    /// On the screen.
    Point pointIn(const SeenWidget& widget, const std::string& windowTitle,
                  double part = 0.5) const;
    /// See `brightnessOfScreen`.
    double brightnessOf(const SeenWidget& widget) const;
    /// Drags something, and once more if the rows stay as they are for a while: a program that has
    /// just come does not notice the pointer at once.
    void drag(Point from, Point to) const;
    static void dragOnce(Point from, Point to);
    /// Takes the window off the screen until it is presented.
    void minimize() const;
    bool isOnScreen() const;
    /// Asks for a size of the window. Returns the width that it then has.
    int resize(int width, int height) const;

    std::unique_ptr<HostProgram> window;

private:
    void enterPath(const std::string& dialogue, const std::string& path) const;

    std::unique_ptr<HostProgram> _manager; // files are read from it after they were dropped
};

} // namespace quarner::testing
