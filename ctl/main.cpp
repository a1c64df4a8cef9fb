// vantricctl: the scripting companion of the client library.
#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <functional>

#include "ctl/Commands.h"
#include "ctl/Failure.h"
#include "ctl/Output.h"
#include "ctl/Text.h"
#include "ctl/Wait.h"

namespace {

using namespace vantricctl;

constexpr uint32_t longestTimeout = 1'000'000;

// The command line: which command it calls, and with which options.
class CommandLine {
  public:
    CommandLine() {
        app_.set_version_flag("--version", "vantricctl " VANTRICCTL_VERSION);
        app_.require_subcommand(1);
        app_.footer(
            "Exit status: 0 done, 1 failed, 2 wrong use, 3 no server publishes, 4 the state is "
            "stale or\n"
            "of another version, 5 the time is over, 130 or 143 interrupted.");
        declareReaders();
        declareChanges();
    }

    // Returns the exit status. Throws as the commands do, and Failure for wrong use.
    int run(int argumentCount, char** arguments) {
        try {
            app_.parse(argumentCount, arguments);
        } catch (const CLI::ParseError& error) {
            if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
                return app_.exit(error);
            }
            throw Failure(statusWrongUse, shown(error.what()));
        }
        return command_();
    }

  private:
    // Adds a command with the options that all commands have.
    CLI::App* add(const char* name, const char* description, uint32_t timeoutSeconds,
                  const std::function<int()>& run) {
        CLI::App* command = app_.add_subcommand(name, description);
        command->add_flag("--json", common_.asJson, "Print JSON");
        command->add_option("--timeout", common_.timeoutSeconds, "Give up after this time")
            ->type_name("SECONDS")
            ->check(CLI::Range(uint32_t{1}, longestTimeout))
            ->default_str(std::to_string(timeoutSeconds));
        command->callback([this, run, timeoutSeconds] {
            common_.timeoutSeconds =
                common_.timeoutSeconds == 0 ? timeoutSeconds : common_.timeoutSeconds;
            command_ = run;
        });
        return command;
    }

    void declareReaders() {
        add("status", "Print the state", 60, [this] { return showStatus(common_, !skipsRefresh_); })
            ->add_flag("--no-refresh", skipsRefresh_,
                       "Print the extended state as it is, without a request");
        add("scan", "Print the networks in range, strongest first", 30,
            [this] { return scan(common_); });
        add("watch", "Print a line for each change of the state", 3600,
            [this] { return watch(common_); });
    }

    void declareChanges() {
        add("switch", "Switch to Wi-Fi or to the carrier", 300,
            [this] { return switchConnectivity(common_, target_); })
            ->add_option("target", target_, "wifi or carrier")
            ->required();
        CLI::App* joining =
            add("join", "Join a Wi-Fi network; a password is read from standard input", 300,
                [this] { return join(common_, join_); });
        joining->add_option("name", join_.name, "The network")->required();
        joining
            ->add_option("--encryption", join_.encryption,
                         "none, wpa, wpa2, wpa-wpa2 or one of the last three with -enterprise")
            ->type_name("TYPE");
        joining->add_option("--username", join_.userName, "For enterprise encryptions")
            ->type_name("NAME");
        add("forget", "Forget the Wi-Fi network", 60, [this] { return forget(common_); });
        CLI::App* loading = add("load-config", "Load a configuration of the modem", 300,
                                [this] { return loadConfig(common_, load_); });
        loading->add_option("file", load_.file, "The configuration")->required();
        loading->add_flag("--keep-wifi", load_.keepsWifi, "Restore the Wi-Fi network afterwards");
        loading
            ->add_option("--expect-hostname", load_.expectedHostname,
                         "Wait until the state shows this host name")
            ->type_name("NAME");
        CLI::App* inspection =
            add("inspect", "Print what the shared memory holds, and what is wrong with it", 3600,
                [this] { return inspect(common_, isWatching_, showSecrets_); });
        inspection->add_flag("--watch", isWatching_, "Refresh every second");
        inspection->add_flag("--show-secrets", showSecrets_, "Print passwords, too");
    }

    CLI::App app_{"Queries, changes and inspects the modem-management server, for scripts.",
                  "vantricctl"};
    std::function<int()> command_;
    CommonOptions common_;
    bool skipsRefresh_ = false;
    std::string target_;
    JoinOptions join_;
    LoadOptions load_;
    bool isWatching_ = false;
    bool showSecrets_ = false;
};

// A file that is opened later must not become one of these. What is written to a closed one fails
// as before, because nothing can be written to what takes its place.
void occupyStandardDescriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) == -1) {
            static_cast<void>(open("/dev/null", O_RDONLY));
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        occupyStandardDescriptors();
        catchSignals();
        return CommandLine().run(argc, argv);
    } catch (const Failure& failure) {
        writeNotice(failure.what());
        return failure.status();
    } catch (const Interrupted& interrupted) {
        return statusSignal + interrupted.signal;
    } catch (const OutputClosed&) {
        return statusFailed;
    } catch (const std::exception& error) {
        writeNotice(shown(error.what()));
        return statusFailed;
    }
}
