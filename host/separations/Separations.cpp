#include "host/separations/Separations.h"

#include "host/separations/SeparationFile.h"
#include "host/terminal/ExitStatus.h"
#include <algorithm>

std::vector<std::string> SeparationNames(const DriverBundle &bundle) {
    const CFOwner<CFArrayRef> list(ZEL_CALL(bundle, ZELPrCopySeparationNames)());
    std::vector<std::string> names;
    for (CFIndex i = 0; list && i < CFArrayGetCount(list.Get()); ++i)
        names.push_back(
            TextOfCFString(static_cast<CFStringRef>(CFArrayGetValueAtIndex(list.Get(), i))));
    return names;
}

void CheckSeparation(const DriverBundle &bundle, const std::string &name) {
    const std::vector<std::string> names = SeparationNames(bundle);
    if (name.empty() || std::find(names.begin(), names.end(), name) != names.end()) return;
    std::string list;
    for (const std::string &entry : names)
        list += (list.empty() ? "" : ", ") + entry;
    throw HostError(ExitStatus::Input, kAboutSeparation,
                    "there is no separation called \"" + name + "\"; choose one of " + list +
                        ", or make it with zelprint make-separation");
}

std::string SeparationsFolder(const DriverBundle &bundle) {
    const CFOwner<CFURLRef> url(ZEL_CALL(bundle, ZELPrCopySeparationsFolder)());
    std::string folder = PathOfURL(url.Get());
    if (folder.empty())
        throw HostError(ExitStatus::Output, "the folder of the separation profiles is not known; "
                                            "check that the user has a home folder");
    return folder;
}

std::string SeparationProblem(const DriverBundle &bundle, const std::string &name) {
    return SeparationFileProblem(SeparationsFolder(bundle) + "/" + name);
}
