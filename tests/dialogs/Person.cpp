#include "tests/dialogs/Person.h"

#include "tests/dialogs/WindowManager.h"

#include <chrono>
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
    if (f[0] == "item") screen.items[f[1]] = control;
    if (f[0] == "menu") screen.menuHandle = f[1];
    if (f[0] == "text") screen.texts += f[5] + "\n";
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

} // namespace

Person::~Person() {
    if (mHost <= 0) return;
    kill(mHost, SIGKILL);
    int status = 0;
    waitpid(mHost, &status, 0);
}

void Person::Open(const std::string &dialog, const PSHPrint &record) {
    const std::string paths[][2] = {{"ZEL_RECORD", mFolder + "/record"},
                                    {"ZEL_STATE", mFolder + "/state"},
                                    {"ZEL_RESULT", mFolder + "/result"}};
    for (const auto &path : paths) {
        setenv(path[0].c_str(), path[1].c_str(), 1);
        unlink(path[1].c_str());
    }
    std::ofstream(mFolder + "/record", std::ios::binary)
        .write(reinterpret_cast<const char *>(&record), sizeof record);
    mHost = Spawn({ZEL_DIALOG_HOST, dialog}, mFolder + "/log");
    ASSERT_GT(mHost, 0);
}

bool Person::HostHasEnded() {
    int status = 0;
    if (mHost > 0 && waitpid(mHost, &status, WNOHANG) == 0) return false;
    mHost = -1;
    unlink((mFolder + "/state").c_str());
    return true;
}

std::string Person::Result() {
    WaitFor("the host's end", [this](const Screen &) { return HostHasEnded(); });
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
        const Screen screen = Look();
        if (condition(screen)) return screen;
        std::this_thread::sleep_for(kGlance);
    }
    GiveUp(what, mFolder);
}

Screen Person::WaitForWindow(const std::string &kind) {
    return WaitFor("a window: " + kind,
                   [&](const Screen &screen) { return screen.kind == kind && screen.isKey; });
}

bool Person::ComesTrue(const std::function<bool(const Screen &)> &effect) const {
    const auto end = Clock::now() + kEffect;
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
        if (ComesTrue(effect)) return;
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

void Person::MoveToItem(const Screen &menu, const std::string &tag) const {
    const auto isHighlighted = [&] {
        const Screen screen = Look();
        return screen.items.count(tag) != 0 && screen.items.at(tag).value == "1";
    };
    // The menu may not follow the pointer yet when it has just come up: keep moving.
    if (menu.items.count(tag) == 0) return;
    Screen::Control item = menu.items.at(tag);
    for (int i = 0; i < 40 && !isHighlighted(); ++i) {
        item.x += i % 2 == 0 ? 4 : -4;
        MoveTo(menu.menuHandle, item);
        for (int glance = 0; glance < 10 && !isHighlighted(); ++glance)
            std::this_thread::sleep_for(kGlance);
    }
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
            Screen screen = Look();
            MoveTo(screen.handle, screen.controls[popup]);
            Run({"xdotool", "mousedown", "1"});
            const bool isOpen =
                ComesTrue([&](const Screen &s) { return s.items.count(wanted) != 0; });
            if (isOpen) MoveToItem(Look(), wanted);
            Run({"xdotool", "mouseup", "1"});
        },
        chosen);
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

void Person::TakePicture(const std::string &name) const {
    const char *folder = std::getenv("ZEL_PICTURES");
    if (folder == nullptr) return;
    Run({"mkdir", "-p", folder});
    Run({"import", "-window", "root", "-trim", "+repage",
         std::string(folder) + "/" + name + ".png"});
}
