// zelprint on a system that does not write, or read, all it is asked to: it never says of less than
// the whole that it is the whole.
#include "tests/host/CommandFixture.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

class FaultyFiles : public Command {
protected:
    /// Runs zelprint with a fault in the files whose paths contain `part`, from byte `at` on.
    [[nodiscard]] RunResult RunWithFault(const std::string &fault, const std::string &part,
                                         uint64_t at, const Names &arguments) const {
        // A blank ends a path in LD_PRELOAD, so the library's folder is told apart from its name.
        const fs::path library = ZEL_FAULTY_FILES;
        const std::string options = getenv("ASAN_OPTIONS") ? getenv("ASAN_OPTIONS") : "";
        return mPlace.Run(arguments, {"LD_PRELOAD=" + library.filename().string(),
                                      "LD_LIBRARY_PATH=" + library.parent_path().string(),
                                      "ZEL_FAULT=" + fault, "ZEL_FAULT_PATH=" + part,
                                      "ZEL_FAULT_AT=" + std::to_string(at),
                                      "ASAN_OPTIONS=" + options + ":verify_asan_link_order=0"});
    }
    [[nodiscard]] Names Job(const Names &more) const {
        Names job = {"--colour-space", "rgb",          "--hot-folder", mPlace.Hot(), "--media",
                     "200x300pt",      "--resolution", "72",           "-t",         "document"};
        job.insert(job.end(), more.begin(), more.end());
        return job;
    }
};

TEST_F(FaultyFiles, NoFault_Prints) {
    EXPECT_EQ(RunWithFault("short-write", "/document", 1 << 30, Job({"--eps", Source()})).status,
              0);
    EXPECT_EQ(mPlace.HotFiles(), Names{"document.eps"});
}

TEST_F(FaultyFiles, BytesLostInTheMiddle_NothingIsPublished) {
    ASSERT_EQ(mPlace.Run(Job({"--eps", Source()})).status, 0);
    const uint64_t size = fs::file_size(mPlace.Hot("document.eps"));
    ASSERT_GT(size, uint64_t{3 * 65536}) << "the middle is written by a write of its own";
    fs::remove(mPlace.Hot("document.eps"));
    for (const uint64_t at : {uint64_t{1}, uint64_t{65535}, uint64_t{65537}, size / 2, size - 1})
        ExpectRefused(RunWithFault("short-write", "/document", at, Job({"--eps", Source()})), 3,
                      "not written whole");
}

TEST_F(FaultyFiles, BytesLostInOneOfManyFiles_NothingIsPublished) {
    for (const char *name : {"/document.eps", "/document_p02.eps", "/document_p03.eps"})
        ExpectRefused(RunWithFault("short-write", name, 70000, Job({"--eps", "-n", "3", Source()})),
                      3, "not written whole");
}

TEST_F(FaultyFiles, FolderThatCannotBeListedToItsEnd_NothingIsPublished) {
    for (uint64_t entry = 1; entry <= 7; ++entry) // three files, the lock, ".", ".." and the end
        ExpectRefused(
            RunWithFault("list-error", "/.zelprint-", entry, Job({"--eps", "-n", "3", Source()})),
            3, "Input/output error");
}

TEST_F(FaultyFiles, BytesLostOfAPostScriptDocument_NothingIsPublished) {
    const Names job = {"--colour-space", "gray",  "--hot-folder", mPlace.Hot(), "-t",
                       "document",       Source()};
    for (const uint64_t at : {100000, 5000000})
        ExpectRefused(RunWithFault("short-write", "/document", at, job), 3, "not written whole");
}

TEST_F(FaultyFiles, PPDThatCannotBeReadToItsEnd_IsRefused) {
    const std::string ppd = "*PPD-Adobe: \"4.3\"\n*LanguageLevel: \"2\"\n*ColorDevice: True\n"
                            "*DefaultResolution: 72dpi\n*DefaultPageSize: A4\n"
                            "*PageSize A4: \"a4\"\n*ImageableArea A4: \"0 0 595 842\"\n";
    WriteFile(mPlace.Path("p.ppd"), ppd + "*PageSize Letter: \"l\"\n");
    for (const Names &job : {Job({"--ppd", mPlace.Path("p.ppd"), "--media", "A4", Source()}),
                             Names{"printer-info", mPlace.Path("p.ppd")}})
        ExpectRefused(RunWithFault("read-error", "/p.ppd", ppd.size(), job), 1,
                      "cannot be read: Input/output error");
}

TEST_F(FaultyFiles, PictureThatCannotBeReadToItsEnd_IsRefused) {
    const std::string header = "P6\n200 300\n255\n";
    WriteFile(mPlace.Path("p.ppm"), header + std::string(200 * 300 * 3, 'z'));
    for (const uint64_t at : {header.size() + 1, header.size() + 100000})
        ExpectRefused(
            RunWithFault("read-error", "/p.ppm", at, Job({"--eps", mPlace.Path("p.ppm")})), 1,
            "Input/output error");
}

} // namespace
