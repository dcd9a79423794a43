#include "ppd/MiniParser.h"

#include "ppd/ParserError.h"
#include "tests/ppd/PPDFile.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <vector>

namespace {

using PPD::MiniParser;
using PPD::Statement;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;

constexpr const char *kHead = "*PPD-Adobe: \"4.3\"\n";

/// A parser on a file of the signature line and these statements.
struct Reader {
    explicit Reader(const std::string &statements)
        : file(kHead + statements), parser(file.URL().Get()) {}
    PPDFile file;
    MiniParser parser;
};

template <class Action>
std::string ErrorOf(Action action) {
    try {
        action();
    } catch (const PPD::ParserError &error) {
        return error.ErrorMessage();
    }
    return "no error";
}

std::string ErrorOfStatement(const std::string &statements, const std::string &mainKeyword) {
    Reader reader(statements);
    return ErrorOf([&] { reader.parser.GetStatement(mainKeyword); });
}

std::string ErrorOfOpening(CFURLRef url) {
    return ErrorOf([&] { const MiniParser parser(url); });
}

std::string ErrorOfContent(const std::string &content) {
    const PPDFile file(content);
    return ErrorOfOpening(file.URL().Get());
}

Statement Parse(const std::string &statements, const std::string &mainKeyword) {
    return Reader(statements).parser.GetStatement(mainKeyword);
}

} // namespace

// --- Opening -----------------------------------------------------------------------------------

TEST(MiniParserOpen, Signature_MustBeTheFirstTokenExactly) {
    const struct {
        std::string content;
        bool accepted;
    } cases[] = {
        {"*PPD-Adobe: \"4.3\"\n", true},
        {"*PPD-Adobe", true},
        {"*PPD-Adobe\n", true},
        {"*PPD-Adobe\r", true},
        {"*PPD-Adobe/x", true},
        {"*PPD-Adobe\t:", true},
        {"", false},
        {"\n*PPD-Adobe: \"4.3\"\n", false},
        {" *PPD-Adobe: \"4.3\"\n", false},
        {"\xEF\xBB\xBF*PPD-Adobe: \"4.3\"\n", false},
        {"*PPD-Adob", false},
        {"*PPD-Adobe2: x\n", false},
        {"*PPD-ADOBE: x\n", false},
        {"*PPD-Adobe\f: x\n", false},
        {"%!PS\n", false},
        {std::string("*PPD-Adobe\0: x", 14), false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(ErrorOfContent(c.content), c.accepted ? "no error" : "Not a PPD file")
            << testing::PrintToString(c.content);
}

TEST(MiniParserOpen, MissingFile_IsNotAPPDFile) {
    EXPECT_EQ(ErrorOfOpening(FileURL("/no/such/folder/printer.ppd").Get()), "Not a PPD file");
}

TEST(MiniParserOpen, NoURL_HasNoPath) {
    EXPECT_EQ(ErrorOfOpening(nullptr), "Can't get path to file");
}

TEST(MiniParserOpen, Fifo_IsRefusedWithoutWaitingForAWriter) {
    const TemporaryFolder folder;
    const std::string path = folder.Path() + "/pipe.ppd";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(ErrorOfOpening(FileURL(path).Get()), "Not a PPD file");
    unlink(path.c_str());
}

TEST(MiniParserOpen, DevicesAndFolders_AreRefused) {
    for (const char *path : {"/dev/zero", "/dev/null", "/dev/tty", "/", "/tmp"})
        EXPECT_EQ(ErrorOfOpening(FileURL(path).Get()), "Not a PPD file") << path;
}

TEST(MiniParserOpen, SymbolicLinkToAFile_IsFollowed) {
    const PPDFile file(kHead);
    const std::string link = file.Path() + ".link";
    ASSERT_EQ(symlink(file.Path().c_str(), link.c_str()), 0);
    EXPECT_EQ(ErrorOfOpening(FileURL(link).Get()), "no error");
    unlink(link.c_str());
}

TEST(MiniParserOpen, RefusedFile_LeavesTheURLToItsOwner) {
    const PPDFile file("no printer");
    const CFRef<CFURLRef> url = file.URL();
    const CFIndex before = CFGetRetainCount(url.Get());
    EXPECT_EQ(ErrorOfOpening(url.Get()), "Not a PPD file");
    EXPECT_EQ(CFGetRetainCount(url.Get()), before);
}

TEST(MiniParserOpen, URL_IsRetainedForTheParsersLife) {
    const PPDFile file(kHead);
    const CFRef<CFURLRef> url = file.URL();
    const CFIndex before = CFGetRetainCount(url.Get());
    {
        const MiniParser parser(url.Get());
        EXPECT_EQ(CFGetRetainCount(url.Get()), before + 1);
    }
    EXPECT_EQ(CFGetRetainCount(url.Get()), before);
}

TEST(MiniParserCopy, StartsAtTheBeginningWhereverTheOtherIs) {
    Reader reader("*A: 1\n*A: 2\n");
    reader.parser.GetNextStatement("*A");
    MiniParser copy(reader.parser);
    EXPECT_EQ(copy.GetNextStatement("*A").GetValue(), "1");
    EXPECT_EQ(reader.parser.GetNextStatement("*A").GetValue(), "2");
}

TEST(MiniParserCopy, FileGone_FailsLikeOpening) {
    Reader reader("*A: 1\n");
    unlink(reader.file.Path().c_str());
    EXPECT_EQ(ErrorOf([&] { const MiniParser copy(reader.parser); }), "Not a PPD file");
}

// --- One statement -----------------------------------------------------------------------------

TEST(MiniParserStatement, OptionTranslationAndCode) {
    const Statement s = Parse(
        "*PageSize Letter/US Letter: \"<< /PageSize [612 792] >> setpagedevice\"\n", "*PageSize");
    EXPECT_EQ(s.GetMainKeyword(), "*PageSize");
    EXPECT_EQ(s.GetOptionKeyword(), "Letter");
    EXPECT_EQ(s.GetTranslatedOptionKeyword(), "US Letter");
    EXPECT_EQ(s.GetValue(), "<< /PageSize [612 792] >> setpagedevice");
    EXPECT_EQ(s.GetTranslatedValue(), s.GetValue());
}

TEST(MiniParserStatement, Values) {
    const struct {
        const char *text;
        const char *mainKeyword;
        std::string option, translation, value;
    } cases[] = {
        {"*Foo: x\n", "*Foo", "", "", "x"},
        {"*Foo Bar: x\n", "*Foo", "Bar", "Bar", "x"},
        {"*Foo Bar/: x\n", "*Foo", "Bar", "Bar", "x"},
        {"*Foo Bar/ Two  words : x\n", "*Foo", "Bar", " Two  words ", "x"},
        {"*Foo Bar/a/b: x\n", "*Foo", "Bar", "a/b", "x"},
        {"*Foo Bar/Trans <41>: x\n", "*Foo", "Bar", "Trans A", "x"},
        {"*Foo Bar/<3A2f>: x\n", "*Foo", "Bar", ":/", "x"},
        {"*Foo Bar/a<>b: x\n", "*Foo", "Bar", "ab", "x"},
        {"*Foo Bar/a>b: x\n", "*Foo", "Bar", "a>b", "x"},
        // Hexadecimal substrings of quoted values.
        {"*NickName: \"Printer <41>\"\n", "*NickName", "", "", "Printer A"},
        {"*NickName: \"<4142><43>\"\n", "*NickName", "", "", "ABC"},
        {"*NickName: \"<22>quoted<22>\"\n", "*NickName", "", "", "\"quoted\""},
        {"*NickName: \"<e4fF>\"\n", "*NickName", "", "", "\xE4\xFF"},
        {"*Foo Bar: \"x <41>\"\n", "*Foo", "Bar", "Bar", "x <41>"},
        {"*JCLFoo Bar: \"x <41>\"\n", "*JCLFoo", "Bar", "Bar", "x A"},
        {"*JCL Bar: \"x <41>\"\n", "*JCL", "Bar", "Bar", "x A"},
        {"*jclFoo Bar: \"x <41>\"\n", "*jclFoo", "Bar", "Bar", "x <41>"},
        {"*Foo : \"x <41>\"\n", "*Foo", "", "", "x A"},
        {"*Foo: x <41>\n", "*Foo", "", "", "x <41>"},
        // White space before the value, line ends included; trailing white space of plain values.
        {"*DefaultPageSize:   A4  \t \n", "*DefaultPageSize", "", "", "A4"},
        {"*Foo:\n  x\n", "*Foo", "", "", "x"},
        {"*Foo:\n*Bar: x\n", "*Foo", "", "", "*Bar: x"},
        {"*Foo: \v\f x\n", "*Foo", "", "", "x"},
        {"*Foo: x\v\n", "*Foo", "", "", "x\v"},
        {"*Foo:x\n", "*Foo", "", "", "x"},
        {"*Foo: a \"b\" c\n", "*Foo", "", "", "a \"b\" c"},
        {"*Foo: a/b:c\n", "*Foo", "", "", "a/b:c"},
        {"*Foo: \" x \"\n", "*Foo", "", "", " x "},
        {"*Foo: \"\"\n", "*Foo", "", "", ""},
        {"*Foo: \"x\"/Translation\n", "*Foo", "", "", "x"},
        {"*Foo: \"x\" y \"z\"\n", "*Foo", "", "", "x"},
        // The option keyword.
        {"*Foo : x\n", "*Foo", "", "", "x"},
        {"*Foo \t Bar: x\n", "*Foo", "Bar", "Bar", "x"},
        {"*Foo\nBar: x\n", "*Foo", "Bar", "Bar", "x"},
        {"*Foo /Trans: x\n", "*Foo", "", "Trans", "x"},
        {"*Foo/Trans: x\n", "*Foo", "Trans", "Trans", "x"},
        {"*Foo B*a^r: x\n", "*Foo", "B*a^r", "B*a^r", "x"},
    };
    for (const auto &c : cases) {
        const Statement s = Parse(c.text, c.mainKeyword);
        EXPECT_EQ(s.GetOptionKeyword(), c.option) << c.text;
        EXPECT_EQ(s.GetTranslatedOptionKeyword(), c.translation) << c.text;
        EXPECT_EQ(s.GetValue(), c.value) << c.text;
    }
}

TEST(MiniParserStatement, EndOfFile_EndsAValue) {
    EXPECT_EQ(Parse("*Foo: x", "*Foo").GetValue(), "x");
    EXPECT_EQ(Parse("*Foo: x  ", "*Foo").GetValue(), "x");
    EXPECT_EQ(Parse("*Foo:", "*Foo").GetValue(), "");
    EXPECT_EQ(Parse("*Foo: \n\n", "*Foo").GetValue(), "");
    EXPECT_EQ(Parse("*Foo: \"", "*Foo").GetValue(), "");
    EXPECT_EQ(Parse("*Foo: \"open\nend", "*Foo").GetValue(), "open\nend");
}

TEST(MiniParserStatement, NulBytes_AreKept) {
    EXPECT_EQ(Parse(std::string("*Foo: a\0b\n", 10), "*Foo").GetValue(), std::string("a\0b", 3));
    EXPECT_EQ(Parse("*Foo: \"<0041>\"\n", "*Foo").GetValue(), std::string("\0A", 2));
}

TEST(MiniParserStatement, QuotedValueOverThreeLines_KeepsItsLineEnds) {
    Reader reader("*Foo A: \"one\r\ntwo\nthree\"\n*End\n*Bar: y\n");
    EXPECT_EQ(reader.parser.GetNextStatement("*Foo").GetValue(), "one\r\ntwo\nthree");
    EXPECT_EQ(reader.parser.GetNextStatement("*Bar").GetValue(), "y");
}

TEST(MiniParserStatement, ContinuationLines_AreNoStatementsUnlessTheyLookLikeThem) {
    EXPECT_EQ(ErrorOfStatement("*Foo A: \"one\n  *Bar: no\nx *Bar: no\n*Barn: no\"\n", "*Bar"),
              "*Bar not found");
    EXPECT_EQ(Parse("*Foo A: \"one\n*Bar: inside\n\"\n", "*Bar").GetValue(), "inside");
}

TEST(MiniParserStatement, CommentsEndsAndIndentedLines_ArePassedOver) {
    EXPECT_EQ(Parse("*% *Foo: no\n*End\n\n   *Foo: no\n\t*Foo: no\n*Fo: no\n*Fooo: no\n*foo: no\n"
                    "Foo: no\n*Foo: yes\n",
                    "*Foo")
                  .GetValue(),
              "yes");
}

TEST(MiniParserStatement, SyntaxErrors) {
    const struct {
        const char *text, *mainKeyword, *message;
    } cases[] = {
        {"*Foo Bar Baz: x\n", "*Foo", "*Foo unrecognised keyword terminator"},
        {"*Foo Bar : x\n", "*Foo", "*Foo unrecognised keyword terminator"},
        {"*Foo Bar\n: x\n", "*Foo", "*Foo unrecognised keyword terminator"},
        {"*Foo Bar", "*Foo", "*Foo unrecognised keyword terminator"},
        {"*Foo", "*Foo", "*Foo unrecognised keyword terminator"},
        {"*Foo Bar/Tr\n: x\n", "*Foo", "*Foo translation must not contain newline"},
        {"*Foo Bar/Tr\r: x\n", "*Foo", "*Foo translation must not contain newline"},
        {"*Foo Bar/Tr", "*Foo", "*Foo translation must not contain newline"},
        {"*Foo: ^Sym\n", "*Foo", "*Foo symbol value not supported"},
        {"*Foo Bar: ^Sym\n", "*Foo", "*Foo symbol value not supported"},
        {"*Foo: \"<4G>\"\n", "*Foo", "*Foo badly formed hex string"},
        {"*Foo: \"<G4>\"\n", "*Foo", "*Foo badly formed hex string"},
        {"*Foo: \"<41 42>\"\n", "*Foo", "*Foo badly formed hex string"},
        {"*Foo: \"<414>\"\n", "*Foo", "*Foo badly formed hex string"},
        {"*Foo: \"<41", "*Foo", "*Foo badly formed hex string"},
        {"*Foo: \"<4", "*Foo", "*Foo badly formed hex string"},
        {"*Foo: \"<4\xB1>\"\n", "*Foo", "*Foo badly formed hex string"},
        {"*Foo: \"<\"\n", "*Foo", "*Foo badly formed hex string"},
        {"*JCLFoo Bar: \"<4G>\"\n", "*JCLFoo", "*JCLFoo badly formed hex string"},
        {"*Foo Bar/<4G>: x\n", "*Foo", "*Foo badly formed hex string"},
        {"*Foo Bar/<41\n", "*Foo", "*Foo badly formed hex string"},
        {"", "*Foo", "*Foo not found"},
        {"*Foo: x\n", "*foo", "*foo not found"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(ErrorOfStatement(c.text, c.mainKeyword), c.message) << c.text;
}

// --- Keyword length and line ends ----------------------------------------------------------------

TEST(MiniParserKeyword, LongerThan255Characters_NeverMatches) {
    const std::string keyword = "*" + std::string(255, 'k');
    EXPECT_EQ(ErrorOfStatement(keyword + ": x\n", keyword), keyword + " not found");
    EXPECT_EQ(ErrorOfStatement(std::string(1000, 'k') + ": x\n", std::string(1000, 'k')),
              std::string(1000, 'k') + " not found");
}

TEST(MiniParserKeyword, Of254Characters_KeepsItsSeparator) {
    const std::string keyword = "*" + std::string(253, 'k');
    EXPECT_EQ(Parse(keyword + ": x\n", keyword).GetValue(), "x");
}

TEST(MiniParserKeyword, Of255Characters_LosesTheCharacterAfterIt) {
    const std::string keyword = "*" + std::string(254, 'k');
    EXPECT_EQ(Parse(keyword + "::x\n", keyword).GetValue(), "x");
    EXPECT_EQ(Parse(keyword + ": Bar: x\n", keyword).GetOptionKeyword(), "Bar");
    EXPECT_EQ(Parse(keyword + "k: x\n", keyword).GetValue(), "x");
}

TEST(MiniParserKeyword, LineOf255Characters_TakesTheNextLineAlong) {
    const std::string line = "*" + std::string(254, 'k') + "\n";
    EXPECT_EQ(Parse(line + "*Foo: lost\n*Foo: x\n", "*Foo").GetValue(), "x");
}

TEST(MiniParserLines, AllFourLineEndsCountAsOne) {
    for (const std::string end : {"\n", "\r", "\r\n", "\n\r"}) {
        std::string text;
        for (const char *line : {"*A: 1", "*B: \"2\"", "", "*A: 3", "*A: 4"}) {
            text += line;
            text += end;
        }
        Reader reader(text);
        EXPECT_EQ(reader.parser.GetNextStatement("*A").GetValue(), "1");
        EXPECT_EQ(reader.parser.GetNextStatement("*B").GetValue(), "2");
        EXPECT_EQ(reader.parser.GetNextStatement("*A").GetValue(), "3");
        EXPECT_EQ(reader.parser.GetNextStatement("*A").GetValue(), "4");
    }
}

TEST(MiniParserLines, LongerThanTheBuffer_AreReadWhole) {
    const std::string noise(200000, 'n');
    const std::string text = "*% " + noise + "\n*Foo A/" + noise + ": \"" + noise + "\"" + noise +
                             "\n*Bar " + noise + ": " + noise + "\n";
    Reader reader(text);
    const Statement foo = reader.parser.GetStatement("*Foo");
    EXPECT_EQ(foo.GetTranslatedOptionKeyword(), noise);
    EXPECT_EQ(foo.GetValue(), noise);
    const Statement bar = reader.parser.GetNextStatement("*Bar");
    EXPECT_EQ(bar.GetOptionKeyword(), noise);
    EXPECT_EQ(bar.GetValue(), noise);
}

TEST(MiniParserLines, EveryAlignmentWithTheBufferReadsAlike) {
    // The buffer holds 64 KiB: the statement crosses its end at every one of its bytes.
    const std::string statement = "*Foo Bar/Tr<41>ns: \"a\r\nb\" rest\r\n*Next: n\r\n";
    for (size_t shift = 0; shift <= statement.size(); ++shift) {
        const size_t fill = 65536 - std::string(kHead).size() - shift;
        Reader reader("*%" + std::string(fill - 3, '-') + "\n" + statement);
        const Statement s = reader.parser.GetStatement("*Foo");
        EXPECT_EQ(s.GetTranslatedOptionKeyword(), "TrAns") << shift;
        EXPECT_EQ(s.GetValue(), "a\r\nb") << shift;
        EXPECT_EQ(reader.parser.GetNextStatement("*Next").GetValue(), "n") << shift;
    }
}

TEST(MiniParserLines, HugeLine_CostsNoMemory) {
    constexpr off_t kSize = 128 << 20;
    Reader reader("*A: 1\n*%");
    ASSERT_EQ(truncate(reader.file.Path().c_str(), kSize), 0); // a hole: reads as zeros
    struct rusage before {};
    getrusage(RUSAGE_SELF, &before);
    EXPECT_EQ(ErrorOf([&] { reader.parser.GetStatement("*B"); }), "*B not found");
    EXPECT_EQ(reader.parser.GetOptionEntry("*A").size(), 1U);
    struct rusage after {};
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 8 * 1024) << "kilobytes";
}

// --- Queries -------------------------------------------------------------------------------------

TEST(MiniParserQuery, GetStatement_YieldsTheFirstFromAnyPosition) {
    Reader reader("*A: 1\n*A: 2\n");
    EXPECT_EQ(reader.parser.GetStatement("*A").GetValue(), "1");
    EXPECT_EQ(reader.parser.GetNextStatement("*A").GetValue(), "2");
    EXPECT_EQ(ErrorOf([&] { reader.parser.GetNextStatement("*A"); }), "*A not found");
    EXPECT_EQ(reader.parser.GetStatement("*A").GetValue(), "1");
}

TEST(MiniParserQuery, Rewind_ClearsTheEnd) {
    Reader reader("*A: 1\n");
    EXPECT_EQ(ErrorOf([&] { reader.parser.GetNextStatement("*B"); }), "*B not found");
    EXPECT_EQ(ErrorOf([&] { reader.parser.GetNextStatement("*A"); }), "*A not found");
    reader.parser.Rewind();
    EXPECT_EQ(reader.parser.GetNextStatement("*A").GetValue(), "1");
}

TEST(MiniParserQuery, AfterASyntaxError_ScanningGoesOnBehindIt) {
    Reader reader("*A x y: *A: inside\n*A: 2\n");
    EXPECT_EQ(ErrorOf([&] { reader.parser.GetNextStatement("*A"); }),
              "*A unrecognised keyword terminator");
    EXPECT_EQ(reader.parser.GetNextStatement("*A").GetValue(), "2");
}

TEST(MiniParserQuery, TwoKeywords_MatchByteForByte) {
    const std::string sizes = "*PageSize Letter: \"l\"\n*PageSize A4: \"a\"\n*PageSize A4: \"b\"\n";
    Reader reader(sizes);
    EXPECT_EQ(reader.parser.GetStatement("*PageSize", "A4").GetValue(), "a");
    EXPECT_EQ(reader.parser.GetStatement("*PageSize", "Letter").GetValue(), "l");
    EXPECT_EQ(ErrorOf([&] { reader.parser.GetStatement("*PageSize", "a4"); }),
              "*PageSize not found");
    EXPECT_EQ(ErrorOf([&] { reader.parser.GetStatement("*PageSize", "Legal"); }),
              "*PageSize not found");
}

TEST(MiniParserQuery, TwoKeywords_MalformedStatementOnTheWayIsAnError) {
    Reader reader("*A x y: 1\n*A z: 2\n");
    EXPECT_EQ(ErrorOf([&] { reader.parser.GetStatement("*A", "z"); }),
              "*A unrecognised keyword terminator");
}

TEST(MiniParserQuery, OptionEntry_HoldsTheLastOfEqualOptions) {
    Reader reader("*A x: 1\n*A y: 2\n*B z: 3\n*A x: 4\n*A: 5\n");
    auto entries = reader.parser.GetOptionEntry("*A");
    EXPECT_THAT(entries, ElementsAre(Key(""), Key("x"), Key("y")));
    EXPECT_EQ(entries[""].GetValue(), "5");
    EXPECT_EQ(entries["x"].GetValue(), "4");
    EXPECT_EQ(entries["x"].GetOptionKeyword(), "x");
    EXPECT_EQ(entries["y"].GetValue(), "2");
}

TEST(MiniParserQuery, OptionEntry_EndsAtTheFirstMalformedStatement) {
    for (const char *third : {"*PageSize A B: \"3\"\n", "*PageSize C/x\n: \"3\"\n",
                              "*PageSize C: ^Sym\n", "*PageSize C/<4>: \"3\"\n"}) {
        Reader reader("*PageSize A: \"1\"\n*PageSize B: \"2\"\n" + std::string(third) +
                      "*PageSize D: \"4\"\n");
        EXPECT_THAT(reader.parser.GetOptionEntry("*PageSize"), ElementsAre(Key("A"), Key("B")));
    }
}

TEST(MiniParserQuery, OptionEntry_OfAnAbsentKeywordIsEmpty) {
    Reader reader("*A x: 1\n");
    EXPECT_THAT(reader.parser.GetOptionEntry("*B"), IsEmpty());
}

TEST(MiniParserQuery, BooleanKeyword) {
    const struct {
        const char *text;
        bool defaultValue, expected;
    } cases[] = {
        {"*ColorDevice: True\n", false, true},
        {"*ColorDevice: \"True\"\n", false, true},
        {"*ColorDevice: True  \r\n", false, true},
        {"*ColorDevice: true\n", true, false},
        {"*ColorDevice: TRUE\n", true, false},
        {"*ColorDevice: Yes\n", true, false},
        {"*ColorDevice: False\n", true, false},
        {"*ColorDevice:", true, false},
        {"", true, true},
        {"", false, false},
        {"*ColorDevice: ^True\n", true, true},
        {"*ColorDevice: ^True\n", false, false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Reader(c.text).parser.BooleanKeyword("*ColorDevice", c.defaultValue), c.expected)
            << c.text;
}

TEST(MiniParserQuery, IntKeyword) {
    const struct {
        const char *text;
        int expected;
    } cases[] = {
        {"*N: \"2\"\n", 2}, {"*N: 2\n", 2},        {"*N: 600dpi\n", 600},
        {"*N: dpi\n", 0},   {"*N: \" -7\"\n", -7}, {"*N: 1.9\n", 1},
        {"*N: 0x10\n", 0},  {"*N: \"\"\n", 0},     {"", 42},
        {"*N: ^Two\n", 42}, {"*N a b: 1\n", 42},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Reader(c.text).parser.IntKeyword("*N", 42), c.expected) << c.text;
}

TEST(MiniParserQuery, RealKeyword) {
    const struct {
        const char *text;
        double expected;
    } cases[] = {
        {"*N: \"2.5\"\n", 2.5}, {"*N: 1e3pt\n", 1000}, {"*N: -.5\n", -0.5},
        {"*N: pt\n", 0},        {"*N: 1,5\n", 1},      {"", 4.25},
        {"*N: ^Two\n", 4.25},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Reader(c.text).parser.RealKeyword("*N", 4.25), c.expected) << c.text;
}

TEST(MiniParserQuery, FileChangedSinceOpening_IsReadAsItIsNow) {
    Reader reader("*A: 1\n");
    std::FILE *file = std::fopen(reader.file.Path().c_str(), "ab");
    ASSERT_NE(file, nullptr);
    std::fputs("*B: 2\n", file);
    std::fclose(file);
    EXPECT_EQ(reader.parser.GetStatement("*B").GetValue(), "2");
    ASSERT_EQ(truncate(reader.file.Path().c_str(), 5), 0);
    EXPECT_EQ(ErrorOf([&] { reader.parser.GetStatement("*A"); }), "*A not found");
}
