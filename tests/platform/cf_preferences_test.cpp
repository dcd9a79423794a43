// Preferences: types, other processes, the platform's own tool, files that cannot be used.
#include "tests/Quoted.h"
#include "tests/platform/CFTest.h"
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <platform/Platform.h>
#include <regex>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

/// The file of an application's preferences: GNUstep tells its folder in its configuration file.
fs::path PreferencesFolder() {
    const std::string configuration = ReadFile(getenv("GNUSTEP_CONFIG_FILE"));
    std::smatch match;
    const std::regex line("GNUSTEP_USER_DEFAULTS_DIR=(\\S+)");
    return std::regex_search(configuration, match, line) ? match[1].str() : "";
}
fs::path PreferencesFile(const std::string &application) {
    return PreferencesFolder() / (application + ".plist");
}

/// The preferences of one application.
struct Application {
    std::string name;

    [[nodiscard]] CFRef<CFPropertyListRef> Get(const char *key) const {
        return CFRef(CFPreferencesCopyAppValue(Str(key).Get(), Str(name).Get()));
    }
    void Set(const char *key, CFPropertyListRef value) const {
        CFPreferencesSetAppValue(Str(key).Get(), value, Str(name).Get());
    }
    [[nodiscard]] bool Synchronize() const {
        return CFPreferencesAppSynchronize(Str(name).Get()) != 0;
    }
    /// The integer and whether it is one.
    [[nodiscard]] std::pair<CFIndex, bool> Integer(const char *key) const {
        Boolean valid = 77;
        const CFIndex value =
            CFPreferencesGetAppIntegerValue(Str(key).Get(), Str(name).Get(), &valid);
        return {value, valid != 0};
    }
    [[nodiscard]] std::pair<bool, bool> Flag(const char *key) const {
        Boolean valid = 77;
        const Boolean value =
            CFPreferencesGetAppBooleanValue(Str(key).Get(), Str(name).Get(), &valid);
        return {value != 0, valid != 0};
    }
};

using IntegerResult = std::pair<CFIndex, bool>;
using FlagResult = std::pair<bool, bool>;

int Tool(const std::string &arguments) {
    return std::system(("defaults " + arguments + " >/dev/null 2>&1").c_str());
}

std::string ToolOutput(const std::string &arguments) {
    const TempFolder folder;
    const std::string out = (folder.Path() / "out").string();
    (void)std::system(("defaults " + arguments + " >" + Quoted(out) + " 2>&1").c_str());
    return folder.Read("out");
}

} // namespace

TEST(Preferences, MissingValuesAreZeroAndNotValid) {
    const Application application{"com.zel.test.missing"};
    EXPECT_FALSE(application.Get("Key"));
    EXPECT_EQ(application.Integer("Key"), IntegerResult(0, false));
    EXPECT_EQ(application.Flag("Key"), FlagResult(false, false));
    EXPECT_EQ(CFPreferencesGetAppIntegerValue(CFSTR("Key"), CFSTR("com.zel.test"), nullptr), 0);
}

TEST(Preferences, EveryTypeSurvivesTheFile) {
    const Application application{"com.zel.test.types"};
    const auto inner = Dictionary();
    CFDictionarySetValue(inner.Get(), CFSTR("FlipH"), kCFBooleanTrue);
    CFDictionarySetValue(inner.Get(), CFSTR("Separation"), CFSTR("caf\xc3\xa9"));
    const auto array = Array();
    CFArrayAppendValue(array.Get(), Number(-1).Get());
    const std::vector<std::pair<const char *, CFRef<CFTypeRef>>> values = {
        {"integer", CFRef<CFTypeRef>::Retain(Number(-7).Get())},
        {"one", CFRef<CFTypeRef>::Retain(Number(1).Get())},
        {"real", CFRef<CFTypeRef>::Retain(Real(0.1).Get())},
        {"true", CFRef<CFTypeRef>::Retain(kCFBooleanTrue)},
        {"false", CFRef<CFTypeRef>::Retain(kCFBooleanFalse)},
        {"text", CFRef<CFTypeRef>::Retain(CFSTR("a \"b\" <c> caf\xc3\xa9 \xe6\x97\xa5"))},
        {"data", CFRef<CFTypeRef>::Retain(Data(std::string("\0\xff\x10", 3)).Get())},
        {"date", CFRef<CFTypeRef>(CFDateCreate(nullptr, 721656000))},
        {"array", CFRef<CFTypeRef>::Retain(array.Get())},
        {"dictionary", CFRef<CFTypeRef>::Retain(inner.Get())}};
    for (const auto &[key, value] : values)
        application.Set(key, value.Get());
    ASSERT_TRUE(application.Synchronize());
    ASSERT_TRUE(fs::exists(PreferencesFile(application.name)));
    // What another process would read.
    const CFRef list(CFPropertyListCreateWithData(
        nullptr, Data(ReadFile(PreferencesFile(application.name))).Get(), 0, nullptr, nullptr));
    ASSERT_TRUE(list);
    for (const auto &[key, value] : values) {
        const auto stored =
            CFDictionaryGetValue(static_cast<CFDictionaryRef>(list.Get()), Str(key).Get());
        ASSERT_TRUE(stored) << key;
        EXPECT_TRUE(CFEqual(stored, value.Get())) << key;
        EXPECT_EQ(CFGetTypeID(stored), CFGetTypeID(value.Get())) << key;
        EXPECT_TRUE(CFEqual(application.Get(key).Get(), value.Get())) << key;
    }
}

TEST(Preferences, NullRemovesAValue) {
    const Application application{"com.zel.test.remove"};
    application.Set("Key", CFSTR("x"));
    ASSERT_TRUE(application.Synchronize());
    application.Set("Key", nullptr);
    EXPECT_FALSE(application.Get("Key"));
    ASSERT_TRUE(application.Synchronize());
    EXPECT_FALSE(application.Get("Key"));
    EXPECT_EQ(ReadFile(PreferencesFile(application.name)).find("Key"), std::string::npos);
}

TEST(Preferences, ValuesThatNoFileCanHoldAreIgnored) {
    const Application application{"com.zel.test.invalid"};
    application.Set("Key", CFSTR("old"));
    application.Set("Key", FileURL("/tmp").Get());
    const auto list = Dictionary();
    CFDictionarySetValue(list.Get(), CFSTR("url"), FileURL("/tmp").Get());
    application.Set("Key", list.Get());
    EXPECT_EQ(Text(static_cast<CFStringRef>(application.Get("Key").Get())), "old");
    EXPECT_TRUE(application.Synchronize());
}

TEST(Preferences, NeedNoAutoreleasePool) {
    testing::internal::CaptureStderr();
    std::thread([] {
        const Application application{"com.zel.test.pool"};
        const auto list = Dictionary();
        CFDictionarySetValue(list.Get(), CFSTR("key"), Array().Get());
        application.Set("Key", list.Get());
        EXPECT_TRUE(application.Synchronize());
        EXPECT_TRUE(application.Get("Key"));
    }).join();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Preferences, NullArgumentsDoNothing) {
    CFPreferencesSetAppValue(nullptr, CFSTR("x"), CFSTR("com.zel.test"));
    CFPreferencesSetAppValue(CFSTR("x"), CFSTR("x"), nullptr);
    EXPECT_EQ(CFPreferencesCopyAppValue(nullptr, CFSTR("com.zel.test")), nullptr);
    EXPECT_EQ(CFPreferencesCopyAppValue(CFSTR("x"), nullptr), nullptr);
    EXPECT_FALSE(CFPreferencesAppSynchronize(nullptr));
}

TEST(Preferences, IntegersAreReadFromNumbersBooleansAndTextThatSaysOne) {
    const Application application{"com.zel.test.integer"};
    const auto integer = [&](CFPropertyListRef value) {
        application.Set("Key", value);
        return application.Integer("Key");
    };
    EXPECT_EQ(integer(Number(4).Get()), IntegerResult(4, true));
    EXPECT_EQ(integer(kCFBooleanTrue), IntegerResult(1, true));
    EXPECT_EQ(integer(Real(3).Get()), IntegerResult(3, true));
    EXPECT_EQ(integer(CFSTR("4")), IntegerResult(4, true));
    EXPECT_EQ(integer(CFSTR("-12")), IntegerResult(-12, true));
    const auto array = Array();
    const auto dictionary = Dictionary();
    const auto half = Real(2.5), infinite = Real(1e300);
    const auto data = Data("4");
    for (const CFTypeRef wrong :
         {CFTypeRef(half.Get()), CFTypeRef(infinite.Get()), CFTypeRef(CFSTR("4x")),
          CFTypeRef(CFSTR("")), CFTypeRef(CFSTR("x")), CFTypeRef(data.Get()),
          CFTypeRef(array.Get()), CFTypeRef(dictionary.Get())})
        EXPECT_EQ(integer(wrong), IntegerResult(0, false));
}

TEST(Preferences, FlagsAreReadFromNumbersBooleansAndTextThatSaysOne) {
    const Application application{"com.zel.test.flag"};
    const auto flag = [&](CFPropertyListRef value) {
        application.Set("Key", value);
        return application.Flag("Key");
    };
    EXPECT_EQ(flag(kCFBooleanTrue), FlagResult(true, true));
    EXPECT_EQ(flag(kCFBooleanFalse), FlagResult(false, true));
    EXPECT_EQ(flag(Number(2).Get()), FlagResult(true, true));
    EXPECT_EQ(flag(Number(0).Get()), FlagResult(false, true));
    for (const char *text : {"YES", "yes", "true", "TRUE", "1"})
        EXPECT_EQ(flag(Str(text).Get()), FlagResult(true, true)) << text;
    for (const char *text : {"NO", "no", "false", "False", "0"})
        EXPECT_EQ(flag(Str(text).Get()), FlagResult(false, true)) << text;
    const auto data = Data("1");
    const auto dictionary = Dictionary();
    for (const CFTypeRef wrong : {CFTypeRef(CFSTR("2")), CFTypeRef(CFSTR("")),
                                  CFTypeRef(data.Get()), CFTypeRef(dictionary.Get())})
        EXPECT_EQ(flag(wrong), FlagResult(false, false));
}

TEST(Preferences, PlatformsToolReadsWhatWasWritten) {
    const Application application{"com.zel.test.tool.read"};
    application.Set("MeasurementUnit", Number(4).Get());
    application.Set("FileFormat", CFSTR("eps"));
    ASSERT_TRUE(application.Synchronize());
    EXPECT_NE(ToolOutput("read com.zel.test.tool.read MeasurementUnit").find('4'),
              std::string::npos);
    EXPECT_NE(ToolOutput("read com.zel.test.tool.read FileFormat").find("eps"), std::string::npos);
}

TEST(Preferences, WhatThePlatformsToolWritesIsRead) {
    const Application application{"com.zel.test.tool.write"};
    application.Set("Mine", CFSTR("kept"));
    ASSERT_TRUE(application.Synchronize());
    ASSERT_EQ(Tool("write com.zel.test.tool.write MeasurementsUnit 2"), 0);
    ASSERT_EQ(Tool("write com.zel.test.tool.write SendToDefaultPrintQueue YES"), 0);
    ASSERT_EQ(Tool("write com.zel.test.tool.write PSColourSpace '<*I1>'"), 0);
    ASSERT_EQ(
        Tool("write com.zel.test.tool.write PageOptions '{FlipH = <*BY>; Separation = Fogra;}'"),
        0);
    ASSERT_TRUE(application.Synchronize());
    EXPECT_EQ(application.Integer("MeasurementsUnit"), IntegerResult(2, true));
    EXPECT_EQ(application.Flag("SendToDefaultPrintQueue"), FlagResult(true, true));
    EXPECT_EQ(Integer(application.Get("PSColourSpace").Get()), 1);
    EXPECT_EQ(Text(static_cast<CFStringRef>(application.Get("Mine").Get())), "kept");
    const auto options = application.Get("PageOptions");
    ASSERT_EQ(CFGetTypeID(options.Get()), CFDictionaryGetTypeID());
    const auto list = static_cast<CFDictionaryRef>(options.Get());
    EXPECT_EQ(CFDictionaryGetValue(list, CFSTR("FlipH")), kCFBooleanTrue);
    ASSERT_EQ(Tool("delete com.zel.test.tool.write MeasurementsUnit"), 0);
    ASSERT_TRUE(application.Synchronize());
    EXPECT_EQ(application.Integer("MeasurementsUnit"), IntegerResult(0, false));
}

TEST(Preferences, ChangesOfTheSameSecondAreSeen) {
    const Application application{"com.zel.test.second"};
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(application.Synchronize());
        ASSERT_EQ(Tool("write com.zel.test.second Count " + std::to_string(i)), 0);
        ASSERT_TRUE(application.Synchronize());
        EXPECT_EQ(application.Integer("Count"), IntegerResult(i, true));
    }
}

/// Ages the application's file and synchronises, so that the file may be taken for known.
void SynchronizeWithOldFile(const Application &application) {
    fs::last_write_time(PreferencesFile(application.name),
                        fs::file_time_type::clock::now() - std::chrono::hours(1));
    std::this_thread::sleep_for(
        std::chrono::milliseconds(3100)); // the time of change cannot be set
    ASSERT_TRUE(application.Synchronize());
}

TEST(Preferences, ChangeOfAFileThatHasLongBeenTheSameIsSeen) {
    const Application application{"com.zel.test.known"};
    application.Set("Count", Number(1).Get());
    ASSERT_TRUE(application.Synchronize());
    SynchronizeWithOldFile(application);
    ASSERT_TRUE(application.Synchronize());
    EXPECT_EQ(application.Integer("Count"), IntegerResult(1, true));
    // As long as the old one, and with its date.
    const fs::path file = PreferencesFile(application.name);
    const auto date = fs::last_write_time(file);
    ASSERT_EQ(Tool("write com.zel.test.known Count '<*I2>'"), 0);
    fs::last_write_time(file, date);
    ASSERT_TRUE(application.Synchronize());
    EXPECT_EQ(application.Integer("Count"), IntegerResult(2, true));
}

TEST(Preferences, OwnChangeIsWrittenToAFileThatHasLongBeenTheSame) {
    const Application application{"com.zel.test.own"};
    application.Set("Count", Number(1).Get());
    ASSERT_TRUE(application.Synchronize());
    SynchronizeWithOldFile(application);
    application.Set("Count", Number(2).Get());
    ASSERT_TRUE(application.Synchronize());
    EXPECT_NE(ToolOutput("read com.zel.test.own Count").find('2'), std::string::npos);
}

TEST(Preferences, FileThatComesOrGoesIsSeen) {
    const Application application{"com.zel.test.comes"};
    ASSERT_TRUE(application.Synchronize());
    ASSERT_TRUE(application.Synchronize());
    ASSERT_EQ(Tool("write com.zel.test.comes Count '<*I1>'"), 0);
    ASSERT_TRUE(application.Synchronize());
    EXPECT_EQ(application.Integer("Count"), IntegerResult(1, true));
    SynchronizeWithOldFile(application);
    fs::remove(PreferencesFile(application.name));
    ASSERT_TRUE(application.Synchronize());
    EXPECT_EQ(application.Integer("Count"), IntegerResult(0, false));
}

TEST(Preferences, NewerValueOfAnotherProcessIsNotOverwrittenByAnOldOne) {
    const Application application{"com.zel.test.newer"};
    application.Set("Theirs", CFSTR("old"));
    ASSERT_TRUE(application.Synchronize());
    ASSERT_EQ(Tool("write com.zel.test.newer Theirs new"), 0);
    application.Set("Mine", CFSTR("x"));
    ASSERT_TRUE(application.Synchronize());
    EXPECT_EQ(Text(static_cast<CFStringRef>(application.Get("Theirs").Get())), "new");
    EXPECT_NE(ToolOutput("read com.zel.test.newer Theirs").find("new"), std::string::npos);
    EXPECT_NE(ToolOutput("read com.zel.test.newer Mine").find('x'), std::string::npos);
}

/// Not a test of its own: what the processes of the next one do.
TEST(PreferencesHelper, DISABLED_WritesItsKeys) {
    const Application application{"com.zel.test.shared"};
    const std::string self = getenv("ZEL_TEST_WRITER");
    for (int i = 0; i < 20; ++i) {
        application.Set((self + "-" + std::to_string(i)).c_str(), Number(i).Get());
        ASSERT_TRUE(application.Synchronize());
    }
}

TEST(Preferences, ProcessesThatWriteAtOnceLoseNothing) {
    constexpr int writers = 6;
    std::vector<std::thread> threads;
    std::vector<int> results(writers, -1);
    for (int i = 0; i < writers; ++i)
        threads.emplace_back([i, &results] {
            const std::string self = fs::read_symlink("/proc/self/exe").string();
            const std::string command = "ZEL_TEST_WRITER=w" + std::to_string(i) + " " +
                                        Quoted(self) +
                                        " --gtest_also_run_disabled_tests "
                                        "--gtest_filter='*.DISABLED_WritesItsKeys' >/dev/null";
            results[size_t(i)] = std::system(command.c_str());
        });
    for (std::thread &thread : threads)
        thread.join();
    const Application application{"com.zel.test.shared"};
    ASSERT_TRUE(application.Synchronize());
    for (int writer = 0; writer < writers; ++writer) {
        EXPECT_EQ(results[size_t(writer)], 0);
        for (int i = 0; i < 20; ++i) {
            const std::string key = "w" + std::to_string(writer) + "-" + std::to_string(i);
            EXPECT_EQ(application.Integer(key.c_str()), IntegerResult(i, true)) << key;
        }
    }
}

TEST(Preferences, ThreadsThatWriteAtOnceLoseNothing) {
    const Application application{"com.zel.test.threads"};
    std::vector<std::thread> threads;
    for (int writer = 0; writer < 4; ++writer)
        threads.emplace_back([&application, writer] {
            for (int i = 0; i < 20; ++i) {
                const std::string key = std::to_string(writer) + "-" + std::to_string(i);
                application.Set(key.c_str(), Number(i).Get());
                EXPECT_TRUE(application.Synchronize());
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    for (int writer = 0; writer < 4; ++writer)
        for (int i = 0; i < 20; ++i)
            EXPECT_EQ(
                application.Integer((std::to_string(writer) + "-" + std::to_string(i)).c_str()),
                IntegerResult(i, true));
}

TEST(Preferences, DamagedFileIsTakenForAnEmptyOne) {
    const std::vector<std::string> contents = {
        "",
        "rubbish",
        "<?xml version=\"1.0\"?><plist",
        "bplist00",
        std::string(200, '\xff'),
        "(an, array)",
        "<?xml version=\"1.0\"?><plist version=\"1.0\"><string>text</string></plist>",
        "{ Key = "};
    for (size_t i = 0; i < contents.size(); ++i) {
        const Application application{"com.zel.test.damaged" + std::to_string(i)};
        std::ofstream(PreferencesFile(application.name)) << contents[i];
        EXPECT_FALSE(application.Get("Key")) << i;
        EXPECT_EQ(application.Integer("Key"), IntegerResult(0, false)) << i;
        application.Set("Key", Number(3).Get());
        (void)application.Synchronize();
        EXPECT_EQ(application.Integer("Key"), IntegerResult(3, true)) << i;
    }
}

/// What a process does whose preferences cannot be written; see the next test.
TEST(PreferencesHelper, DISABLED_CannotWrite) {
    const Application application{"com.zel.test.readonly"};
    EXPECT_EQ(Text(static_cast<CFStringRef>(application.Get("Before").Get())), "kept");
    application.Set("Key", CFSTR("new"));
    EXPECT_FALSE(application.Synchronize());
    EXPECT_EQ(Text(static_cast<CFStringRef>(application.Get("Before").Get())), "kept");
}

TEST(Preferences, FolderInTheFilesPlaceIsReported) {
    const Application application{"com.zel.test.folder"};
    fs::create_directory(PreferencesFile(application.name));
    EXPECT_FALSE(application.Get("Key"));
    application.Set("Key", CFSTR("new"));
    EXPECT_FALSE(application.Synchronize());
    EXPECT_EQ(Text(static_cast<CFStringRef>(application.Get("Key").Get())), "new");
    fs::remove(PreferencesFile(application.name));
    EXPECT_TRUE(application.Synchronize());
}

TEST(Preferences, LinkToTheFileStays) {
    const Application application{"com.zel.test.link"};
    const TempFolder elsewhere;
    const fs::path target = elsewhere.Path() / "kept elsewhere.plist";
    std::ofstream(target) << "{ Theirs = kept; }";
    fs::create_symlink(target, PreferencesFile(application.name));
    application.Set("Key", CFSTR("new"));
    EXPECT_TRUE(application.Synchronize());
    EXPECT_TRUE(fs::is_symlink(PreferencesFile(application.name)));
    EXPECT_NE(ReadFile(target).find("new"), std::string::npos);
    EXPECT_NE(ReadFile(target).find("kept"), std::string::npos);
}

TEST(Preferences, ReadOnlyFolderIsReadAndReported) {
    const Application application{"com.zel.test.readonly"};
    application.Set("Before", CFSTR("kept"));
    ASSERT_TRUE(application.Synchronize());
    std::string asUser;
    if (getuid() == 0) {
        // Root may write everywhere: the process runs as nobody, who may read.
        asUser = "setpriv --reuid 65534 --regid 65534 --clear-groups ";
        (void)std::system(("chmod -R o+rX " + Quoted(getenv("HOME"))).c_str());
    }
    const std::string self = fs::read_symlink("/proc/self/exe").string();
    if (std::system((asUser + "test -x " + Quoted(self)).c_str()) != 0)
        GTEST_SKIP() << "nobody may run " << self;
    fs::permissions(PreferencesFolder(), fs::perms::owner_write, fs::perm_options::remove);
    const int result = std::system((asUser + Quoted(self) +
                                    " --gtest_also_run_disabled_tests"
                                    " --gtest_filter='*.DISABLED_CannotWrite' >/dev/null")
                                       .c_str());
    fs::permissions(PreferencesFolder(), fs::perms::owner_write, fs::perm_options::add);
    EXPECT_EQ(result, 0);
}
