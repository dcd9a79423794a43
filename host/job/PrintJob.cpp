#include "host/job/PrintJob.h"

#include "host/job/PageCache.h"
#include "host/job/Replacement.h"
#include "host/job/SettingsFile.h"
#include "host/readers/RowReader.h"
#include "host/separations/DriverSeparation.h"
#include "host/separations/Separations.h"
#include "host/terminal/Cancellation.h"
#include "host/terminal/Console.h"
#include "host/terminal/LastResort.h"
#include "host/terminal/Progress.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <set>
#include <unistd.h>

namespace {

/// How long a wish to cancel may go unnoticed.
constexpr std::chrono::milliseconds kPatience{50};

/// The driver's failure as a HostError.
[[noreturn]] void ThrowDriverFailure(const DriverSession &session, const JobPlan &plan,
                                     int32_t code) {
    if (code == kZELFileNotFound && !plan.separation.empty())
        throw HostError(ExitStatus::Input, kAboutSeparation,
                        "the separation \"" + plan.separation + "\" cannot be loaded: " +
                            SeparationProblem(session.Bundle(), plan.separation));
    if (code > 0 && code != kZELUnexpectedFailure)
        throw HostError(ExitStatus::Output, "cannot write the document in " + plan.folder + ": " +
                                                strerror(code) + "; nothing was kept");
    if (code == kZELFileNotCreated)
        throw HostError(ExitStatus::Output, "the driver cannot create a file in " + plan.folder +
                                                "; check the folder and its path");
    if (code == kZELOutOfMemory)
        throw HostError(ExitStatus::Driver, "out of memory; use a lower --resolution");
    throw HostError(ExitStatus::Driver, "the driver failed: " + session.ErrorText(code) +
                                            " (code " + std::to_string(code) + ")");
}

/// One document on its way through the driver.
class DocumentWriter {
public:
    DocumentWriter(const DriverSession &session, const JobPlan &plan, int bandHeight, bool quiet)
        : mSession(session), mPlan(plan), mDriver(session.Bundle().Functions()),
          mContext(session.Context()), mBandHeight(bandHeight),
          mProgress(mPlan.TotalPages(), quiet) {}

    void Open() {
        if (!mPlan.separation.empty() && mPlan.pixels == DocumentPixels::XRGB)
            mSeparation = std::make_unique<DriverSeparation>(mSession.Bundle(), mPlan.separation);
        Check(mDriver.ZELPrOpenDoc(mContext));
    }

    /// Prints all pages and closes the document, whatever happens.
    void PrintPages() {
        try {
            int number = 0;
            for (int copy = 0; copy < mPlan.copies; ++copy)
                for (size_t page = 0; page < mPlan.pages.size(); ++page)
                    PrintPage(page, ++number);
            for (const PageReference &page : mPlan.pages)
                page.file->Finish();
        } catch (...) {
            mDriver.ZELPrSetError(mContext, kZELUnexpectedFailure);
            (void)mDriver.ZELPrCloseDoc(mContext);
            throw;
        }
        Check(mDriver.ZELPrCloseDoc(mContext));
    }

    /// Bytes that the driver has made of the document.
    [[nodiscard]] uint64_t Length() const {
        return ZEL_CALL(mSession.Bundle(), ZELPrDocumentLength)(mContext);
    }

private:
    void Check(int32_t code) const {
        if (code != kZELNoError) ThrowDriverFailure(mSession, mPlan, code);
    }

    void PrintPage(size_t page, int number) {
        const PageReference &source = mPlan.pages[page];
        PageImage image;
        const bool kept = mCache.Find(page);
        if (!kept) image = source.file->OpenPage(source.page, mPlan.TargetOf(source));
        Warn(source, image.note);
        Check(mDriver.ZELPrOpenPage(mContext, nullptr, nullptr));
        try {
            if (kept)
                PrintKeptBands(page, number);
            else
                PrintBands(image, page, number);
        } catch (...) {
            mDriver.ZELPrSetError(mContext, kZELUnexpectedFailure);
            (void)mDriver.ZELPrClosePage(mContext);
            throw;
        }
        Check(mDriver.ZELPrClosePage(mContext));
    }

    /// Says something of a page once, however many copies there are.
    void Warn(const PageReference &source, const std::string &text) {
        const std::string line =
            source.file->Path() + ": page " + std::to_string(source.page + 1) + ": " + text;
        if (!text.empty() && mSaid.insert(line).second) Complain(line);
    }

    /// A picture that its decoder had to invent in part is none, unless it is good enough.
    void Judge(const PageReference &source, const Damage &damage) {
        if (damage.isInvented && !mPlan.allowDamaged)
            throw HostError(ExitStatus::Input, source.file->Path() + ": page " +
                                                   std::to_string(source.page + 1) +
                                                   " is damaged (" + damage.what +
                                                   "); print what is left with --allow-damaged");
        Warn(source, damage.what);
    }

    void PrintBands(const PageImage &image, size_t page, int number) {
        const Placement &place = image.placement;
        // What is read as quickly again takes no room.
        const bool keeps =
            number <= mPlan.TotalPages() - static_cast<int>(mPlan.pages.size()) && !image.isQuick;
        if (keeps) mCache.Begin(page, place);
        RowReader reader(image.rows, mPlan.pixels, mBandHeight, mPlan.separate);
        int top = 0;
        for (Rows rows = Next(reader); rows.count > 0; rows = Next(reader)) {
            PrintBand(rows, top, place);
            if (keeps) mCache.Add(rows);
            top += rows.count;
            mProgress.Show(number, top, place.height);
        }
        const PageReference &source = mPlan.pages[page];
        // The driver would make the rest of the page white.
        if (top < image.rows->Height())
            ThrowUnreadable(source.file->Path(), source.page, "its rows end early");
        Judge(source, image.rows->TellDamage());
        if (keeps) mCache.End();
    }

    void PrintKeptBands(size_t page, int number) {
        const Placement place = *mCache.Find(page);
        int top = 0;
        for (Rows rows = mCache.Read(page, top); rows.count > 0; rows = mCache.Read(page, top)) {
            StopIfCancelled();
            PrintBand(rows, top, place);
            top += rows.count;
            mProgress.Show(number, top, place.height);
        }
    }

    /// Rows may take minutes to come: who cancels must not have to wait for them.
    [[nodiscard]] Rows Next(RowReader &reader) const {
        while (!reader.Wait(kPatience))
            StopIfCancelled();
        Rows rows = reader.Next();
        StopIfCancelled();
        return rows;
    }

    void PrintBand(const Rows &rows, int top, const Placement &place) const {
        ZELBand band;
        band.baseAddress = rows.pixels;
        band.bounds = {top, 0, top + rows.count, place.width};
        band.rowBytes = rows.rowBytes;
        band.pixelFormat = PixelFormat(mPlan.pixels);
        const ZELRect destination = {place.top + top, place.left, place.top + top + rows.count,
                                     place.left + place.width};
        Check(mDriver.ZELPrPrintBitmap(mContext, &band, &band.bounds, &destination));
    }

    void StopIfCancelled() const {
        if (Cancellation::IsWanted()) mDriver.ZELPrSetError(mContext, kZELUserCancelled);
        Cancellation::Check();
    }

    const DriverSession &mSession;
    const JobPlan &mPlan;
    const DriverFunctions &mDriver;
    DriverContext *mContext;
    int mBandHeight;
    /// The document's own, tried before it is opened and kept until it is done.
    std::unique_ptr<DriverSeparation> mSeparation;
    Progress mProgress;
    PageCache mCache;
    std::set<std::string> mSaid;
};

class OpenFile {
public:
    explicit OpenFile(const std::string &path)
        : mDescriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~OpenFile() {
        if (mDescriptor >= 0) (void)close(mDescriptor);
    }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;
    [[nodiscard]] int Get() const { return mDescriptor; }

private:
    int mDescriptor;
};

void ThrowNotWhole(const JobPlan &plan, const std::string &problem) {
    throw HostError(ExitStatus::Output, "the document in " + plan.folder +
                                            " was not written whole (" + problem +
                                            "); make room there and print again");
}

/// Returns the size of the file.
uint64_t CheckDocument(const JobPlan &plan, int fd, int pages) {
    // The driver reports success even when its last write failed.
    const std::string problem =
        CheckFinishedFile(fd, plan.LeastFileSize(pages), plan.MostFileSize(pages));
    if (!problem.empty()) ThrowNotWhole(plan, problem);
    return static_cast<uint64_t>(lseek(fd, 0, SEEK_END));
}

/// Every file has to be there, to end as it must, and to be as long as what the driver made: when
/// the system takes only a part of a write, which the driver does not notice, bytes are missing in
/// the middle.
void CheckFiles(const JobPlan &plan, const OutputStaging &staging, uint64_t made) {
    const std::vector<std::string> files = staging.Files();
    const size_t wanted = plan.eps ? static_cast<size_t>(plan.TotalPages()) : 1;
    // A file whose last writes failed is deleted by the driver, which still reports success.
    if (files.size() != wanted)
        throw HostError(ExitStatus::Output, "only " + std::to_string(files.size()) + " of " +
                                                std::to_string(wanted) +
                                                " files could be written whole in " + plan.folder +
                                                "; make room there and print again");
    uint64_t size = 0;
    for (const std::string &name : files)
        size += CheckDocument(plan, OpenFile(staging.Folder() + "/" + name).Get(),
                              plan.eps ? 1 : plan.TotalPages());
    if (size != made)
        ThrowNotWhole(plan,
                      std::to_string(size) + " of " + std::to_string(made) + " bytes arrived");
}

std::vector<std::string> PrintedFiles(const JobPlan &plan) {
    std::vector<std::string> paths;
    for (const PageReference &page : plan.pages)
        paths.push_back(page.file->ReadablePath());
    return paths;
}

bool IsQueued(const DriverBundle &bundle, const std::string &path) {
    return ZEL_CALL(bundle, ZELPrHandToPrintQueue)(path.c_str()) != 0;
}

/// The document is in its place: what comes from now on changes nothing in that.
void Settle(const JobPlan &plan, ExitStatus status) {
    if (plan.moreFollow) return;
    Cancellation::Disregard();
    LastResort::Settle(status);
}

/// What the driver calls the files unless it could not create one at once.
std::vector<std::string> NamesOf(const JobPlan &plan) {
    if (!plan.eps) return {plan.title + ".ps"};
    std::vector<std::string> names;
    for (int page = 1; page <= plan.TotalPages(); ++page) {
        char suffix[24] = "";
        if (page > 1) (void)snprintf(suffix, sizeof suffix, "_p%02d", page);
        names.push_back(plan.title + suffix + ".eps");
    }
    return names;
}

} // namespace

JobResult PrintJob(const DriverSession &session, Handle record, const JobPlan &plan, int bandHeight,
                   bool quiet) {
    const Cancellation cancellation;
    const DriverFunctions &driver = session.Bundle().Functions();
    OutputStaging staging(plan.folder,
                          {driver.ZELPrMoveWithoutReplacing, driver.ZELPrInheritRights},
                          plan.sync ? Sync::Yes : Sync::No);
    CheckRoom(plan.folder, plan.LeastFileSize(plan.TotalPages()));
    SetOutputFolder(session, record, staging.Folder());
    DocumentWriter writer(session, plan, bandHeight, quiet);
    writer.Open();
    writer.PrintPages();
    if (!plan.namedInDialog) staging.RestoreNames(NamesOf(plan));
    CheckFiles(plan, staging, writer.Length());
    JobResult result;
    Cancellation::Check();
    result.queued =
        plan.queue && IsQueued(session.Bundle(), staging.Folder() + "/" + staging.Files()[0]);
    if (result.queued) {
        Settle(plan, ExitStatus::Success);
        return result;
    }
    // A name that is not made from the title was chosen in the print dialog's save panel, which has
    // asked whether it may replace a file.
    const std::string staged = staging.Files()[0];
    const bool chosen = plan.namedInDialog && staged != plan.title + (plan.eps ? ".eps" : ".ps");
    if (chosen) CheckNotPrinted(plan.folder + "/" + staged, PrintedFiles(plan));
    result.files = staging.Publish(plan.name.empty() && chosen ? staged : plan.name);
    Settle(plan, plan.queue ? ExitStatus::Queue : ExitStatus::Success);
    if (plan.queue)
        throw HostError(ExitStatus::Queue, "the print queue did not take the document; it is kept "
                                           "as " +
                                               result.files[0].path +
                                               "; start the queue, then: lpr -o raw " +
                                               result.files[0].path);
    return result;
}
