/// From the command line and the user's defaults to a print record and a plan.
#ifndef ZEL_HOST_JOBSETUP_H
#define ZEL_HOST_JOBSETUP_H

#include "host/command/JobOptions.h"
#include "host/driver/PrinterModel.h"
#include "host/job/JobPlan.h"
#include "host/job/Settings.h"

/// One job's driver, record and plan.
class JobSetup {
public:
    /// Opens the driver, fills the record from the user's defaults or the settings file, applies
    /// the options and runs the dialogs asked for. `files` must outlive the setup. Throws
    /// HostError.
    JobSetup(const DriverBundle &bundle, const JobOptions &options,
             const std::vector<SourceFile> &files);

    [[nodiscard]] const DriverSession &Session() const { return mSession; }
    [[nodiscard]] Handle RecordInHandle() const { return mHandle.Get(); }
    [[nodiscard]] const JobPlan &Plan() const { return mPlan; }

private:
    void ChoosePrinter();
    void FillRecord();
    void ApplyOptions();
    void ApplyColours();
    void ApplyPage();
    void SuggestDocument() const;
    void RunDialogs();
    void SaveSettings() const;
    void FitPage();
    void PlanPages();
    void PlanRaster();
    void PlanColours();
    void PlanDestination();

    const DriverBundle &mBundle;
    const JobOptions &mOptions;
    const std::vector<SourceFile> &mFiles;
    DriverSession mSession;
    RecordHandle mHandle;
    Record mRecord;
    PrinterModel mPrinter;
    SavedSettings mSaved;
    std::string mPPD; ///< chosen for this job; empty: the user's
    std::string mDialogFolder;
    JobPlan mPlan;
};

#endif
