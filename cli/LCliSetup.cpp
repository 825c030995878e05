#include "cli/LCliSetup.h"

#include "core/LSettings.h"
#include "platform/engine/LTerminalProgressHost.h"
#ifdef SONITRA_HAVE_QTCORE
#include "platform/qtcore/LQtSettingsStore.h"
#endif

struct LCliSetup::Impl
{
#ifdef SONITRA_HAVE_QTCORE
    LQtSettingsStore settings;
#endif
    LTerminalProgressHostFactory progress;
};

LCliSetup::LCliSetup() : pImpl(std::make_unique<Impl>())
{
#ifdef SONITRA_HAVE_QTCORE
    LSettings::SetStore(&pImpl->settings);
#endif
    LProgressHostFactory::SetDefault(&pImpl->progress);
    LTerminalProgressHostFactory::InstallInterruptHandler();
}

LCliSetup::~LCliSetup()
{
    LProgressHostFactory::SetDefault(nullptr);
    LSettings::SetStore(nullptr);
}
