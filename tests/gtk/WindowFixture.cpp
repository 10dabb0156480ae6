// SPDX-License-Identifier: LGPL-2.1-or-later
#include "tests/gtk/WindowFixture.h"

#include <chrono>
#include <csignal>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

#include "tests/gtk/SeenPixels.h"
#include "tests/support/Program.h"

namespace quarner::testing {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds longest{30};
constexpr std::chrono::milliseconds interval{10};

std::string input(std::vector<std::string> command) {
    command.insert(command.begin(), "xdotool");
    const ProgramResult result = runProgram(command);
    return result.status == 0 ? result.output : "";
}

struct Geometry {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

Geometry geometryOf(const std::string& windowTitle) {
    std::istringstream lines(input({"search", "--onlyvisible", "--name", "^" + windowTitle + "$",
                                    "getwindowgeometry", "--shell"}));
    Geometry geometry;
    for (std::string line; std::getline(lines, line);) {
        const auto sign = line.find('=');
        const std::string name = line.substr(0, sign);
        for (const auto& [wanted, place] : {std::pair("X", &geometry.x),
                                            {"Y", &geometry.y},
                                            {"WIDTH", &geometry.width},
                                            {"HEIGHT", &geometry.height}})
            if (name == wanted)
                *place = std::stoi(line.substr(sign + 1));
    }
    return geometry;
}

bool waitFor(const std::function<bool()>& condition, std::chrono::seconds most = longest) {
    const auto end = Clock::now() + most;
    while (!condition()) {
        if (Clock::now() > end)
            return false;
        std::this_thread::sleep_for(interval);
    }
    return true;
}

std::string coordinate(int number) { return std::to_string(number); }

bool is(const SeenWidget& widget, const std::string& name, const std::string& role) {
    return widget.name() == name && (role.empty() || widget.role() == role) && widget.isVisible();
}

} // namespace

WindowTest::WindowTest() {
    VirtualDesktop::shared();
    atspi_init();
    // A call about a widget that has just gone is never replied to.
    constexpr int milliseconds = 1000;
    atspi_set_timeout(milliseconds, 0);
}

void WindowTest::start(const std::vector<std::string>& arguments, HostSettings settings) {
    settings.folder = folder.path().string();
    waitUntil([] { return !input({"get_num_desktops"}).empty(); }, "window manager");
    window = std::make_unique<HostProgram>(arguments, settings);
    waitUntil([&] { return geometryOf(title).width > 0; }, "window");
    waitUntil([] { return seenProgram("quarner-gtk") != std::nullopt; }, "the program");
}

void WindowTest::waitUntil(const std::function<bool()>& condition, const std::string& what) const {
    if (waitFor(condition))
        return;
    const auto seen = seenProgram("quarner-gtk");
    if (!seen && window) {
        const HostEnd end = window->wait();
        throw std::runtime_error("There is no " + what + ": the program ended with " +
                                 std::to_string(end.status) + " and said " + end.out + end.err);
    }
    throw std::runtime_error("There is no " + what + " in\n" +
                             (seen ? treeOf(*seen) : std::string("no program")));
}

SeenWidget WindowTest::program() const { return seenProgram("quarner-gtk").value(); }

bool WindowTest::isThere(const std::string& name, const std::string& role) const {
    const auto seen = seenProgram("quarner-gtk");
    return seen && seen->find([&](const SeenWidget& one) { return is(one, name, role); });
}

SeenWidget WindowTest::find(const std::string& name, const std::string& role) const {
    waitUntil([&] { return isThere(name, role); }, name);
    return *program().find([&](const SeenWidget& one) { return is(one, name, role); });
}

WindowTest::Point WindowTest::pointIn(const SeenWidget& widget, const std::string& windowTitle,
                                      double part) const {
    const Geometry geometry = geometryOf(windowTitle);
    const auto frame = program().find(
        [&](const SeenWidget& one) { return one.name() == windowTitle && one.isVisible(); });
    const SeenWidget::Place whole = frame.value().place();
    const SeenWidget::Place place = widget.place();
    // The frame that the toolkit draws is around what it tells the places of.
    const int frameWidth = (geometry.width - whole.width) / 2;
    const int frameHeight = (geometry.height - whole.height) / 2;
    return {geometry.x + frameWidth + place.x + place.width / 2,
            geometry.y + frameHeight + place.y + static_cast<int>(part * place.height)};
}

double WindowTest::brightnessOf(const SeenWidget& widget) const {
    const Point middle = pointIn(widget, title);
    const SeenWidget::Place place = widget.place();
    return brightnessOfScreen(middle.x - place.width / 2, middle.y - place.height / 2, place.width,
                              place.height);
}

void WindowTest::click(const SeenWidget& widget, const std::string& windowTitle) const {
    const Point point = pointIn(widget, windowTitle);
    input({"mousemove", "--sync", coordinate(point.x), coordinate(point.y), "click", "1"});
}

void WindowTest::doubleClick(const SeenWidget& widget) const {
    const Point point = pointIn(widget, title);
    input({"mousemove", "--sync", coordinate(point.x), coordinate(point.y), "click", "--repeat",
           "2", "--delay", "50", "1"});
}

void WindowTest::click(const std::string& name, const std::string& role) const {
    click(find(name, role), title);
}

void WindowTest::clickWhenReady(const std::string& name, const std::string& role) const {
    waitUntil([&] { return find(name, role).isSensitive(); }, name + " that can be used");
    click(name, role);
}

void WindowTest::activateWhenReady(const std::string& name, const std::string& role) const {
    waitUntil([&] { return find(name, role).isSensitive(); }, name + " that can be used");
    find(name, role).activate();
}

void WindowTest::press(const std::string& keys) { input({"key", "--clearmodifiers", keys}); }

void WindowTest::type(const std::string& text) { input({"type", "--delay", "0", text}); }

void WindowTest::dragOnce(Point from, Point to) {
    input({"mousemove", "--sync", coordinate(from.x), coordinate(from.y), "mousedown", "1"});
    // The toolkit takes it for a drag once the pointer has moved some way, and asks the window
    // below it at each move.
    const int steps = 10;
    for (int step = 1; step <= steps; ++step)
        input({"mousemove", "--sync", coordinate(from.x + (to.x - from.x) * step / steps),
               coordinate(from.y + (to.y - from.y) * step / steps)});
    input({"mouseup", "1"});
}

void WindowTest::drag(Point from, Point to) const {
    constexpr int mostTries = 4;
    constexpr std::chrono::seconds longEnough{6};
    const std::vector<std::string> before = rows();
    for (int tries = 0; tries < mostTries; ++tries) {
        dragOnce(from, to);
        if (waitFor([&] { return rows() != before; }, longEnough))
            return;
    }
}

bool WindowTest::isOnScreen() const { return geometryOf(title).width > 0; }

void WindowTest::minimize() const {
    input({"search", "--onlyvisible", "--name", "^" + title + "$", "windowminimize"});
    waitUntil([&] { return !isOnScreen(); }, "minimized window");
}

int WindowTest::resize(int width, int height) const {
    // The window manager keeps it as large as it had to be at the time of each request.
    waitFor([&] {
        input({"search", "--name", "^" + title + "$", "windowsize", coordinate(width),
               coordinate(height)});
        return geometryOf(title).width <= width;
    });
    return geometryOf(title).width;
}

std::vector<std::string> WindowTest::rows() const {
    std::vector<std::string> titles;
    const auto list = program().find([](const SeenWidget& one) { return one.role() == "list"; });
    if (!list)
        return titles;
    for (const SeenWidget& item : list->children())
        if (item.role() == "list item")
            titles.push_back(item.name().substr(0, item.name().find(',')));
    return titles;
}

void WindowTest::waitForRows(const std::vector<std::string>& titles) const {
    const bool areThere = waitFor([&] { return rows() == titles; });
    EXPECT_TRUE(areThere) << ::testing::PrintToString(titles) << treeOf(program());
}

SeenWidget WindowTest::row(const std::string& rowTitle) const {
    const auto isIt = [&](const SeenWidget& one) {
        return one.role() == "list item" && one.name().starts_with(rowTitle + ",");
    };
    waitUntil([&] { return program().find(isIt).has_value(); }, "row " + rowTitle);
    return *program().find(isIt);
}

void WindowTest::dragRow(const std::string& rowTitle, const std::string& to, bool below) const {
    drag(pointIn(row(rowTitle), title), pointIn(row(to), title, below ? 0.8 : 0.2));
}

void WindowTest::dropFiles(const std::vector<std::string>& paths, const SeenWidget& target) {
    static constexpr char source[] = "Files to drag";
    HostSettings settings = here();
    settings.program = FILES_TO_DRAG;
    settings.environment.emplace_back("GSK_RENDERER=cairo"); // quicker without a graphics card
    _manager.reset();
    waitUntil([] { return geometryOf(source).width == 0; }, "end of the one before");
    _manager = std::make_unique<HostProgram>(paths, settings);
    waitUntil([] { return geometryOf(source).width > 0; }, source);
    input({"search", "--name", source, "windowmove", "--sync", "0", "0"});
    const Geometry from = geometryOf(source);
    drag({from.x + from.width / 2, from.y + from.height / 2}, pointIn(target, title));
}

HostSettings WindowTest::gated() const {
    writeContent(gate, "");
    HostSettings settings = here();
    settings.preloads.emplace_back(FAILING_CALLS);
    settings.environment.emplace_back("QUARNER_FAULT=pwrite 1 held always mix.");
    settings.environment.push_back("QUARNER_FAULT_GATE=" + gate);
    return settings;
}

void WindowTest::openImageDialogue() const {
    // The end of a drag may keep the keyboard from the window for a moment.
    int polls = 0;
    waitUntil(
        [&] {
            constexpr int pollsBeforeAnotherTry = 200;
            if (polls++ % pollsBeforeAnotherTry == 0) {
                click(titleField, "text"); // so that this window has the keyboard
                press("ctrl+s");
            }
            return geometryOf(imageDialogue).width > 0;
        },
        imageDialogue);
}

void WindowTest::chooseImage(const std::string& path) const {
    openImageDialogue();
    fillDialogue(path);
}

void WindowTest::fillDialogue(const std::string& path) const {
    waitUntil([&] { return geometryOf(imageDialogue).width > 0; }, imageDialogue);
    enterPath(imageDialogue, path);
}

void WindowTest::enterInDialogue(const std::string& dialogue, const std::string& path) const {
    waitUntil([&] { return geometryOf(dialogue).width > 0; }, dialogue);
    press("ctrl+l"); // shows the field for a path
    enterPath(dialogue, path);
}

void WindowTest::enterPath(const std::string& dialogue, const std::string& path) const {
    const auto isFocusedText = [](const SeenWidget& one) {
        return one.role() == "text" && one.isFocused();
    };
    waitUntil(
        [&] {
            const auto seen = seenProgram("quarner-gtk");
            return seen && seen->find(isFocusedText);
        },
        "focused name");
    press("ctrl+a");
    type(path);
    press("Return");
    waitUntil([&] { return geometryOf(dialogue).width == 0; }, "end of the dialogue");
}

} // namespace quarner::testing
