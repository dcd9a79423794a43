#include "host/job/PrintJob.h"

#include "host/command/Progress.h"
#include "host/job/Cancellation.h"
#include "host/job/PrintQueue.h"
#include "host/readers/RowReader.h"
#include "host/separations/Separations.h"
#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// How long a wish to cancel may go unnoticed.
constexpr std::chrono::milliseconds kPatience{50};

/// The driver's failure as a HostError.
[[noreturn]] void ThrowDriverFailure(const JobSetup &setup, int32_t code) {
    const JobPlan &plan = setup.Plan();
    if (code == kZELFileNotFound && !plan.separation.empty())
        throw HostError(ExitStatus::Input,
                        "the separation \"" + plan.separation +
                            "\" cannot be loaded: " + SeparationProblem(plan.separation));
    if (code > 0 && code != kZELUnexpectedFailure)
        throw HostError(ExitStatus::Output, "cannot write the document in " + plan.folder + ": " +
                                                strerror(code) + "; nothing was kept");
    if (code == kZELFileNotCreated)
        throw HostError(ExitStatus::Output, "the driver cannot create a file in " + plan.folder +
                                                "; check the folder and its path");
    if (code == kZELOutOfMemory)
        throw HostError(ExitStatus::Driver, "out of memory; use a lower --resolution");
    throw HostError(ExitStatus::Driver, "the driver failed: " + setup.Session().ErrorText(code) +
                                            " (code " + std::to_string(code) + ")");
}

/// One document on its way through the driver.
class DocumentWriter {
public:
    DocumentWriter(const JobSetup &setup, int bandHeight, bool quiet)
        : mSetup(setup), mPlan(setup.Plan()), mDriver(setup.Session().Bundle().Functions()),
          mContext(setup.Session().Context()), mBandHeight(bandHeight),
          mProgress(mPlan.TotalPages(), quiet) {}

    void Open() { Check(mDriver.ZELPrOpenDoc(mContext)); }

    /// Prints all pages and closes the document, whatever happens.
    void PrintPages() {
        try {
            int number = 0;
            for (int copy = 0; copy < mPlan.copies; ++copy)
                for (const PageReference &page : mPlan.pages)
                    PrintPage(page, ++number);
        } catch (...) {
            mDriver.ZELPrSetError(mContext, kZELUnexpectedFailure);
            (void)mDriver.ZELPrCloseDoc(mContext);
            throw;
        }
        Check(mDriver.ZELPrCloseDoc(mContext));
    }

    /// Bytes that the driver has made of the document.
    [[nodiscard]] uint64_t Length() const {
        return ZEL_CALL(mSetup.Session().Bundle(), ZELPrDocumentLength)(mContext);
    }

private:
    void Check(int32_t code) const {
        if (code != kZELNoError) ThrowDriverFailure(mSetup, code);
    }

    void PrintPage(const PageReference &source, int number) {
        const PageImage image = source.file->OpenPage(source.page, mPlan.TargetOf(source));
        Check(mDriver.ZELPrOpenPage(mContext, nullptr, nullptr));
        try {
            PrintBands(image, number);
        } catch (...) {
            mDriver.ZELPrSetError(mContext, kZELUnexpectedFailure);
            (void)mDriver.ZELPrClosePage(mContext);
            throw;
        }
        Check(mDriver.ZELPrClosePage(mContext));
    }

    void PrintBands(const PageImage &image, int number) {
        const Placement &place = image.placement;
        RowReader reader(image.rows, mPlan.pixels, mBandHeight);
        int top = 0;
        for (Rows rows = Next(reader); rows.count > 0; rows = Next(reader)) {
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
        band.pixelFormat = mPlan.pixels == DocumentPixels::CMYK   ? kZELFormatCMYK32
                           : mPlan.pixels == DocumentPixels::XRGB ? kZELFormatXRGB32
                                                                  : kZELFormatGray8;
        const ZELRect destination = {place.top + top, place.left, place.top + top + rows.count,
                                     place.left + place.width};
        Check(mDriver.ZELPrPrintBitmap(mContext, &band, &band.bounds, &destination));
    }

    void StopIfCancelled() const {
        if (!Cancellation::IsWanted()) return;
        mDriver.ZELPrSetError(mContext, kZELUserCancelled);
        throw HostError(Cancellation::Status(), "cancelled; nothing was kept");
    }

    const JobSetup &mSetup;
    const JobPlan &mPlan;
    const DriverFunctions &mDriver;
    DriverContext *mContext;
    int mBandHeight;
    Progress mProgress;
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

} // namespace

JobResult PrintJob(const JobSetup &setup, int bandHeight, bool quiet) {
    const JobPlan &plan = setup.Plan();
    const Cancellation cancellation;
    OutputStaging staging(plan.folder);
    CheckRoom(plan.folder, plan.LeastFileSize(plan.TotalPages()));
    SetOutputFolder(setup.Session(), setup.RecordInHandle(), staging.Folder());
    DocumentWriter writer(setup, bandHeight, quiet);
    writer.Open();
    writer.PrintPages();
    CheckFiles(plan, staging, writer.Length());
    JobResult result;
    result.queued = plan.queue && HandToPrintQueue(staging.Folder() + "/" + staging.Files()[0]);
    if (result.queued) return result;
    // A name that is not made from the title was chosen in the print dialog's save panel, which has
    // asked whether it may replace a file.
    const std::string staged = staging.Files()[0];
    const bool chosen = staged != plan.title + (plan.eps ? ".eps" : ".ps");
    result.files = staging.Publish(plan.name.empty() && chosen ? staged : plan.name);
    if (plan.queue)
        throw HostError(ExitStatus::Queue, "the print queue did not take the document; it is kept "
                                           "as " +
                                               result.files[0].path +
                                               "; start the queue, then: lpr -o raw " +
                                               result.files[0].path);
    return result;
}
