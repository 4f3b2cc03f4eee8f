// migrationprocess LEGACY STORE GALLERY [CHANGE]: one run of the migration, killed at that change of a file. Tells on
// standard output how many changes it made. Exit code 0 when the run came to its end.

#include "clientservices/globalparamwrapper.h"
#include "migration/legacymigration.h"
#include "platform/paths.h"
#include "platform/programentry.h"
#include "platform/text.h"
#include "support/faultydisk.h"

#include <iostream>

int platform::programMain(const std::vector<std::string>& arguments)
{
    const auto toPath = [](const std::string& text) { return platform::toPath(platform::toWide(text)); };
    using testsupport::FaultyDisk;
    const FaultyDisk disk(arguments.size() > 3 ? FaultyDisk::Fault::Kill : FaultyDisk::Fault::None,
                          arguments.size() > 3 ? std::stoll(arguments[3]) : 0);
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(platform::toWide(arguments.at(1)));
    migration::Plan plan;
    plan.legacyFile = toPath(arguments.at(0));
    plan.mainFile = toPath(arguments[1]) / "main.dat";
    plan.galleryFile = toPath(arguments[1]) / toPath(arguments.at(2));
    const migration::Report report = migration::run(plan);
    std::cout << FaultyDisk::changes() << '\n';
    return report.remembered || report.earlierRun ? 0 : 1;
}
