#include "tests/dialogs/Person.h"

#include "tests/dialogs/WindowManager.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto kPatience = 60s; ///< for a machine that does much else
constexpr auto kEffect = 4s;    ///< before an action is repeated
constexpr auto kGlance = 20ms;

void Run(const std::vector<std::string> &arguments) {
    const pid_t pid = Spawn(arguments, "/dev/null");
    int status = 0;
    if (pid > 0) waitpid(pid, &status, 0);
}

std::string ReadFile(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The dialog would never return: ends the test program.
[[noreturn]] void GiveUp(const std::string &what, const std::string &folder) {
    fprintf(stderr, "Waited in vain: %s\n%s\n%s\n", what.c_str(),
            ReadFile(folder + "/state").c_str(), ReadFile(folder + "/log").c_str());
    if (const char *pictures = std::getenv("ZEL_PICTURES"))
        Run({"import", "-window", "root", std::string(pictures) + "/in-vain.png"});
    std::exit(1);
}

std::vector<std::string> Fields(const std::string &line) {
    std::vector<std::string> fields;
    std::istringstream stream(line);
    for (std::string field; std::getline(stream, field, '\t');)
        fields.push_back(field);
    fields.resize(6);
    return fields;
}

void AddMenu(Screen &screen, const std::vector<std::string> &f) {
    screen.menuHandle = f[1];
    screen.menuX = std::atoi(f[2].c_str());
    screen.menuY = std::atoi(f[3].c_str());
    screen.menuRoom = std::atoi(f[4].c_str());
    std::istringstream(f[5]) >> screen.menuWidth >> screen.menuHeight;
}

void AddLine(Screen &screen, const std::vector<std::string> &f) {
    const Screen::Control control = {std::atoi(f[2].c_str()), std::atoi(f[3].c_str()), f[4] == "1",
                                     f[5]};
    if (f[0] == "window") {
        screen.kind = f[1];
        screen.handle = f[2];
        screen.isKey = f[3] == "1";
        screen.title = f[5];
    }
    if (f[0] == "control") {
        screen.controls[f[1]] = control;
        if (screen.focus == f[1]) screen.focus.clear();
    }
    if (f[0] == "responder") screen.focus = f[1];
    if (f[0] == "item") screen.items[f[1]] = control;
    if (f[0] == "menu") AddMenu(screen, f);
    if (f[0] == "text") {
        screen.font = f[1];
        screen.texts += f[5] + "\n";
    }
    if (f[0] == "focus") {
        screen.focus = f[1];
        screen.isFocusSelected =
            f[2] == "0" &&
            std::atoi(f[3].c_str()) == static_cast<int>(screen.controls[f[1]].value.size());
    }
}

bool Has(const Screen &screen, const std::string &control) {
    const auto found = screen.controls.find(control);
    return found != screen.controls.end() && found->second.enabled;
}

/// Tag of the open menu's item under the pointer; empty when there is none.
std::string HighlightedItem(const Screen &screen) {
    const auto found = std::find_if(screen.items.begin(), screen.items.end(),
                                    [](const auto &item) { return item.second.value == "1"; });
    return found == screen.items.end() ? "" : found->first;
}

int YOfItem(const Screen &screen, const std::string &tag) {
    const auto found = screen.items.find(tag);
    return found == screen.items.end() ? -1 : found->second.y;
}

bool IsWholeMenuSeen(const Screen &screen) {
    return std::all_of(screen.items.begin(), screen.items.end(), [&](const auto &item) {
        return 0 < item.second.y && item.second.y < screen.menuRoom;
    });
}

} // namespace

Person::~Person() {
    if (mHost <= 0) return;
    kill(mHost, SIGKILL);
    int status = 0;
    waitpid(mHost, &status, 0);
}

void Person::Start(const std::vector<std::string> &arguments) {
    setenv("ZEL_STATE", (mFolder + "/state").c_str(), 1);
    for (const char *name : {"/state", "/log"})
        unlink((mFolder + name).c_str());
    mHost = Spawn(arguments, mFolder + "/log");
    ASSERT_GT(mHost, 0);
}

void Person::Open(const std::string &dialog, const PSHPrint &record) {
    setenv("ZEL_RECORD", (mFolder + "/record").c_str(), 1);
    setenv("ZEL_RESULT", (mFolder + "/result").c_str(), 1);
    unlink((mFolder + "/result").c_str());
    std::ofstream(mFolder + "/record", std::ios::binary)
        .write(reinterpret_cast<const char *>(&record), sizeof record);
    // Also where the user's defaults cannot be read.
    Start({ZEL_DIALOG_HOST, dialog, "-GSAppKitUserBundles", "(\"" ZEL_DIALOG_OBSERVER "\")"});
}

bool Person::HostHasEnded() {
    if (mHost > 0 && waitpid(mHost, &mStatus, WNOHANG) == 0) return false;
    mHost = -1;
    unlink((mFolder + "/state").c_str());
    return true;
}

void Person::Signal(int number) const {
    if (mHost > 0) kill(mHost, number);
}

int Person::Status() {
    WaitFor("the host's end", [this](const Screen &) { return HostHasEnded(); });
    return WIFEXITED(mStatus) ? WEXITSTATUS(mStatus) : 128 + WTERMSIG(mStatus);
}

std::string Person::Log() const {
    return ReadFile(mFolder + "/log");
}

std::string Person::Result() {
    EXPECT_EQ(Status(), 0) << Log();
    return ReadFile(mFolder + "/result");
}

PSHPrint Person::Record() const {
    PSHPrint record = {};
    std::ifstream(mFolder + "/record", std::ios::binary)
        .read(reinterpret_cast<char *>(&record), sizeof record);
    return record;
}

Screen Person::Look() const {
    Screen screen;
    std::ifstream file(mFolder + "/state");
    for (std::string line; std::getline(file, line);)
        AddLine(screen, Fields(line));
    return screen;
}

Screen Person::WaitFor(const std::string &what,
                       const std::function<bool(const Screen &)> &condition) {
    const auto end = Clock::now() + kPatience;
    while (Clock::now() < end) {
        Screen screen = Look();
        if (condition(screen)) return screen;
        std::this_thread::sleep_for(kGlance);
    }
    GiveUp(what, mFolder);
}

Screen Person::WaitForWindow(const std::string &kind) {
    return WaitFor("a window: " + kind,
                   [&](const Screen &screen) { return screen.kind == kind && screen.isKey; });
}

bool Person::ComesTrue(const std::function<bool(const Screen &)> &effect,
                       std::chrono::milliseconds patience) const {
    const auto end = Clock::now() + patience;
    while (Clock::now() < end) {
        if (effect(Look())) return true;
        std::this_thread::sleep_for(kGlance);
    }
    return false;
}

void Person::Repeat(const std::string &what, const std::function<void()> &action,
                    const std::function<bool(const Screen &)> &effect) {
    for (int attempt = 0; attempt < 10; ++attempt) {
        action();
        if (ComesTrue(effect, kEffect)) return;
        fprintf(stderr, "Without effect: %s\n", what.c_str());
    }
    GiveUp(what, mFolder);
}

void Person::MoveTo(const std::string &handle, const Screen::Control &control) const {
    Run({"xdotool", "mousemove", "--window", handle, std::to_string(control.x),
         std::to_string(control.y)});
}

void Person::Click(const std::string &control, const std::function<bool(const Screen &)> &effect) {
    WaitFor(control, [&](const Screen &screen) { return Has(screen, control); });
    Repeat(
        "click on " + control,
        [&] {
            Screen screen = Look();
            if (!Has(screen, control)) return;
            MoveTo(screen.handle, screen.controls[control]);
            Run({"xdotool", "mousedown", "1"});
            Run({"xdotool", "mouseup", "1"});
        },
        effect);
}

void Person::ClickTo(const std::string &control, const std::string &kind) {
    Click(control, [&](const Screen &screen) {
        return kind.empty() ? HostHasEnded() : screen.kind == kind && screen.isKey;
    });
}

void Person::Toggle(const std::string &checkBox) {
    const std::string before = Look().controls[checkBox].value;
    Click(checkBox,
          [&](const Screen &screen) { return screen.controls.at(checkBox).value != before; });
}

void Person::Hold(const std::string &control, std::chrono::milliseconds time) {
    const Screen screen = WaitFor(control, [&](const Screen &s) { return Has(s, control); });
    MoveTo(screen.handle, screen.controls.at(control));
    Run({"xdotool", "mousedown", "1"});
    std::this_thread::sleep_for(time);
    Run({"xdotool", "mouseup", "1"});
}

void Person::OpenMenu(const std::string &popup) {
    Click(popup, [](const Screen &screen) { return !screen.menuHandle.empty(); });
}

void Person::Wheel(int notches) {
    for (int i = 0; i < std::abs(notches); ++i)
        Run({"xdotool", "click", notches > 0 ? "5" : "4"});
}

void Person::WheelTo(const std::string &tag) {
    constexpr int kStrip = 30; // at both ends of a menu that is longer than the screen
    const auto end = Clock::now() + kPatience;
    while (Clock::now() < end) {
        const Screen screen = Look();
        const auto wanted = screen.items.find(tag);
        if (wanted == screen.items.end() || IsWholeMenuSeen(screen)) return;
        const int y = wanted->second.y;
        if (kStrip < y && y < screen.menuRoom - kStrip) return;
        Wheel(y <= kStrip ? -1 : 1);
        const bool hasScrolled =
            ComesTrue([&](const Screen &s) { return YOfItem(s, tag) != y; }, 1s);
        if (!hasScrolled) return; // an end of the menu
    }
}

void Person::MoveToItem(const std::string &tag) {
    const Screen screen = Look();
    const auto wanted = screen.items.find(tag);
    if (wanted == screen.items.end()) return;
    MoveTo(screen.menuHandle, wanted->second);
    ComesTrue([&](const Screen &s) { return HighlightedItem(s) == tag; }, kEffect);
}

void Person::Choose(const std::string &popup, int tag) {
    const std::string wanted = std::to_string(tag);
    WaitFor(popup, [&](const Screen &screen) { return Has(screen, popup); });
    const auto chosen = [&](const Screen &screen) {
        const auto found = screen.controls.find(popup);
        return found != screen.controls.end() && found->second.value == wanted &&
               screen.menuHandle.empty();
    };
    Repeat(
        "choose " + wanted + " in " + popup,
        [&] {
            if (Look().menuHandle.empty()) OpenMenu(popup);
            WheelTo(wanted);
            MoveToItem(wanted);
            Run({"xdotool", "mousedown", "1"});
            Run({"xdotool", "mouseup", "1"});
        },
        chosen);
}

void Person::Drag(const std::string &popup, int tag) {
    const Screen screen = WaitFor(popup, [&](const Screen &s) { return Has(s, popup); });
    MoveTo(screen.handle, screen.controls.at(popup));
    Run({"xdotool", "mousedown", "1"});
    WaitFor("an open menu", [](const Screen &s) { return !s.menuHandle.empty(); });
    MoveToItem(std::to_string(tag));
    Run({"xdotool", "mouseup", "1"});
    WaitFor("a closed menu", [](const Screen &s) { return s.menuHandle.empty(); });
}

void Person::Type(const std::string &field, const std::string &text) {
    Click(field, [&](const Screen &screen) { return screen.focus == field; });
    Repeat(
        "type " + text + " into " + field,
        [&] {
            std::vector<std::string> keys = {"xdotool", "key", "--delay", "15", "End"};
            keys.insert(keys.end(), Look().controls[field].value.size(), "BackSpace");
            Run(keys);
            Run({"xdotool", "type", "--delay", "25", "--", text});
        },
        [&](const Screen &screen) { return screen.controls.at(field).value == text; });
}

void Person::Press(const std::string &key) {
    Run({"xdotool", "key", key});
}

void Person::PressTo(const std::string &key, const std::function<bool(const Screen &)> &effect) {
    Repeat(
        "press " + key, [&] { Press(key); }, effect);
}

void Person::DragWindow(int dx, int dy) {
    const std::string handle = Look().handle;
    Run({"xdotool", "mousemove", "--window", handle, "--", "150", "-8"});
    Run({"xdotool", "mousedown", "1"});
    for (int step = 0; step < 10; ++step) // a window manager waits for a hand that really moves
        Run({"xdotool", "mousemove_relative", "--sync", "--", std::to_string(dx / 10),
             std::to_string(dy / 10)});
    Run({"xdotool", "mouseup", "1"});
    WaitFor("the window manager", [](const Screen &) { return PointerIsFree(); });
}

void Person::TakePicture(const std::string &name) const {
    const char *folder = std::getenv("ZEL_PICTURES");
    if (folder == nullptr) return;
    Run({"mkdir", "-p", folder});
    Run({"import", "-window", "root", "-trim", "+repage",
         std::string(folder) + "/" + name + ".png"});
}
