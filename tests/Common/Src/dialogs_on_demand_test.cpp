// The module with the windows comes into the process with the first dialog, and once.
#include "tests/Common/Src/BundleHost.h"

#include <gtest/gtest.h>
#include <set>
#include <sstream>

namespace {

/// The files mapped into this process whose path holds `part`.
std::set<std::string> Mapped(const std::string &part) {
    std::set<std::string> files;
    std::istringstream maps(ReadFile("/proc/self/maps"));
    for (std::string line; std::getline(maps, line);) {
        const size_t path = line.find('/');
        if (path != std::string::npos && line.find(part, path) != std::string::npos)
            files.insert(line.substr(path));
    }
    return files;
}

void PrintJob(const ScratchFolder &folder) {
    RecordHandle record;
    Session session;
    session.Suggest(100, 100, 72);
    EXPECT_TRUE(Driver().ZELPrValidate(session.Get(), record.Get()));
    EXPECT_TRUE(session.SetHotFolder(record.Get(), folder.Path()));
    ZELDriverInfo info = {};
    Driver().ZELPrGetInfo(session.Get(), record.Get(), &info);
    EXPECT_EQ(Driver().ZELPrOpenDoc(session.Get()), 0);
    EXPECT_EQ(session.PrintPage(info.widthPixels, info.heightPixels), 0);
    EXPECT_EQ(Driver().ZELPrCloseDoc(session.Get()), 0);
    EXPECT_EQ(session.Close(), 0);
}

void ShowDialog(Boolean (*dialog)(DriverContext *, Handle)) {
    RecordHandle record;
    const Session session;
    Driver().ZELPrDefaults(session.Get(), record.Get());
    const StderrCapture capture;
    EXPECT_FALSE(dialog(session.Get(), record.Get())); // there is no window system
}

TEST(DialogsOnDemand, Job_WithoutADialog_LoadsNothingOfWindows) {
    const ScratchFolder folder;
    PrintJob(folder);
    EXPECT_EQ(folder.Names().size(), 1U);
    EXPECT_EQ(Mapped("ZELPostscript.bundle/ZELPostscript").size(), 1U);
    for (const char *library : {"Dialogs.bundle", "libgnustep-gui", "libX11", "libcairo"})
        EXPECT_EQ(Mapped(library), std::set<std::string>()) << library;
}

TEST(DialogsOnDemand, Dialogs_OfSeveralSessions_LoadTheModuleOnce) {
    ShowDialog(Driver().ZELPrStyle);
    const std::set<std::string> first = Mapped("Dialogs.bundle");
    EXPECT_EQ(first.size(), 1U);
    EXPECT_EQ(Mapped("libgnustep-gui").size(), 1U);
    ShowDialog(Driver().ZELPrJob);
    ShowDialog(Driver().ZELPrStyle);
    EXPECT_EQ(Mapped("Dialogs.bundle"), first);
}

} // namespace
