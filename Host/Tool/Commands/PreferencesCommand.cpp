// preferences: the importer's preferences window, opened as the product's
// source settings effect opens it in a host.

#include "twHostCommand.h"

#include "twSimPlugin.h"

#include <ostream>

namespace {

using OpenPreferencesFunc = csSDK_int32 (*)(imStdParms* stdParms, csSDK_int32 tab, csSDK_int32* modified);

class twPreferencesCommand final : public twHostCommand {
public:
    void addOptions(CLI::App& command) override {
        command.add_option("--tab", m_tab, "the tab the window opens at (default 0)")
            ->type_name("N")
            ->check(twHostWholeNumber(0, 1000, "a tab number from 0 to 1000"));
    }

    int run(twHostSession& s) override {
        auto open = reinterpret_cast<OpenPreferencesFunc>(s.host.plugin().symbol("twOpenPreferences"));
        if (!open) {
            s.err << "This plug-in has no preferences window to open (it exports no twOpenPreferences)\n";
            return kExitPluginFailure;
        }
        csSDK_int32 modified = 0;
        const csSDK_int32 result = open(s.host.stdParms(), m_tab, &modified);
        s.out << "Preferences window: " << (result == 0 ? "closed" : "failed") << " (" << result << ")\n";
        s.out << "Options changed: " << (modified ? "yes" : "no") << "\n";
        return result == 0 ? kExitOk : kExitPluginFailure;
    }

private:
    int m_tab = 0;
};

[[maybe_unused]] const bool registered = twHostRegisterCommand<twPreferencesCommand>(
    "preferences", "open the importer's preferences window as a host does", 80);

}  // namespace
