// vantricctl: the scripting companion of the client library.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

#include "Vantric/Utils/StandardDescriptors.h"
#include "ctl/Commands.h"
#include "ctl/Failure.h"
#include "ctl/Output.h"
#include "ctl/Wait.h"

namespace {

using namespace vantricctl;

constexpr uint32_t longestTimeout = 1'000'000;

constexpr const char* exitStatuses =
    "Exit status: 0 done, 1 failed, 2 wrong use, 3 no server publishes, 4 the state is stale or\n"
    "of another version, 5 the time is over, 130 or 143 interrupted.";

// Declares the commands. Parsing then calls the one that is chosen, and sets `status`.
void declare(CLI::App& app, Options& options, int& status) {
    const auto add = [&](const char* name, const char* description, uint32_t timeoutSeconds,
                         int (*run)(const Options&)) {
        CLI::App* command = app.add_subcommand(name, description);
        command->add_flag("--json", options.asJson, "Print JSON");
        command->add_option("--timeout", options.timeoutSeconds, "Give up after this time")
            ->type_name("SECONDS")
            ->check(CLI::Range(uint32_t{1}, longestTimeout))
            ->default_str(std::to_string(timeoutSeconds));
        command->callback([&options, &status, timeoutSeconds, run] {
            options.timeoutSeconds =
                options.timeoutSeconds == 0 ? timeoutSeconds : options.timeoutSeconds;
            status = run(options);
        });
        return command;
    };
    CLI::App* command = add("status", "Print the state", 60, showStatus);
    command->add_flag("--no-refresh", options.skipsRefresh,
                      "Print the extended state as it is, without a request");

    add("watch", "Print a line for each change of the state", 3600, watch);
    add("scan", "Print the networks in range, strongest first", 30, scan);

    command = add("switch", "Switch to Wi-Fi or to the carrier", 300, switchConnectivity);
    command->add_option("target", options.target)
        ->required()
        ->check(CLI::IsMember({"wifi", "carrier"}));

    command =
        add("join", "Join a Wi-Fi network; a password is read from standard input", 300, join);
    command->add_option("name", options.name, "The network")->required();
    command
        ->add_option("--encryption", options.encryption,
                     "Without it, the server must know the network")
        ->check(CLI::IsMember(
            std::vector<std::string>(std::begin(encryptionNames), std::end(encryptionNames))));
    command->add_option("--username", options.userName, "For enterprise encryptions")
        ->type_name("NAME");

    add("forget", "Forget the Wi-Fi network", 60, forget);

    command = add("load-config", "Load a configuration of the modem", 300, loadConfig);
    command->add_option("file", options.file, "The configuration")->required();
    command->add_flag("--keep-wifi", options.keepsWifi, "Restore the Wi-Fi network afterwards");
    command
        ->add_option("--expect-hostname", options.expectedHostname,
                     "Wait until the state shows this host name")
        ->type_name("NAME");

    command = add("inspect", "Print what the shared memory holds, and what is wrong with it", 3600,
                  inspect);
    command->add_flag("--watch", options.isWatching, "Refresh every second");
    command->add_flag("--show-secrets", options.showsSecrets, "Print passwords, too");
}

int run(int argumentCount, char** arguments) {
    CLI::App app("Queries, changes and inspects the modem-management server, for scripts.",
                 "vantricctl");
    app.set_version_flag("--version", "vantricctl " VANTRICCTL_VERSION);
    app.require_subcommand(1);
    app.footer(exitStatuses);
    Options options;
    int status = statusDone;
    declare(app, options, status);
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::Success)) {
            throw Failure(statusWrongUse, shown(error.what()));
        }
        return app.exit(error);
    }
    return status;
}

int report(int status, const std::string& sentence) {
    if (!sentence.empty()) {
        std::fprintf(stderr, "vantricctl: %s\n", sentence.c_str());
    }
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        com_qel::Orvane::Vantric::occupyStandardDescriptors();
        catchSignals();
        return run(argc, argv);
    } catch (const Failure& failure) {
        return report(failure.status(), failure.what());
    } catch (const std::exception& error) {
        return report(statusFailed, shown(error.what()));
    }
}
