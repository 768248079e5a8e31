// kelmasn: a command-line view of the library's encodings. Each subcommand lives in a source of its
// own (cmd_*.cpp) and is listed in the table below; `kelmasn help` describes them.
//
// Exit status: 0 success, 1 the input is refused (or cannot be read or written), 2 usage.
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "color.h"
#include "kelm/kelmasn.h"
#include "messages.h"
#include "subcommands.h"

namespace {

using kelmasn_tool::Subcommand;
using kelmasn_tool::usage_error;

// The subcommands in the order the help lists them.
using AddSubcommand = Subcommand (*)(CLI::App&);
const AddSubcommand kSubcommands[] = {
    kelmasn_tool::add_der,    kelmasn_tool::add_types,  kelmasn_tool::add_decode,
    kelmasn_tool::add_encode, kelmasn_tool::add_sample, kelmasn_tool::add_str,
    kelmasn_tool::add_check,  kelmasn_tool::add_canon,  kelmasn_tool::add_inspect,
    kelmasn_tool::add_diff,   kelmasn_tool::add_craft,  kelmasn_tool::add_schema,
};

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"kelmasn: inspect and convert the library's ASN.1 encodings.\n"
                 "Exit status: 0 success, 1 the input is refused, 2 usage."};
    app.set_version_flag("--version", std::string("kelmasn ") + kelmasn_library_version(),
                         "print the library's version and exit");
    app.name("kelmasn");
    app.require_subcommand(1);
    std::vector<Subcommand> subcommands;
    for (const AddSubcommand add : kSubcommands) {
        subcommands.push_back(add(app));
        kelmasn_tool::add_color_option(*subcommands.back().app);
    }

    // "kelmasn help [SUBCOMMAND]" is --help; any other first word must be a subcommand.
    if (argc >= 2 && std::strcmp(argv[1], "help") == 0) {
        CLI::App* about = &app;
        if (argc >= 3) {
            for (CLI::App* sub : app.get_subcommands({}))
                if (sub->get_name() == argv[2])
                    about = sub;
            if (about == &app)
                return usage_error(std::string("no subcommand named '") + argv[2] + "'");
        }
        std::cout << about->help();
        return 0;
    }
    if (argc >= 2 && argv[1][0] != '-') {
        bool known = false;
        for (CLI::App* sub : app.get_subcommands({}))
            known = known || sub->get_name() == argv[1];
        if (!known)
            return usage_error(std::string("unknown subcommand '") + argv[1] +
                               "'; kelmasn help lists the subcommands");
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForAllHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForVersion& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        return usage_error(e.what());
    }
    for (const Subcommand& subcommand : subcommands)
        if (subcommand.app->parsed())
            return subcommand.run();
    return 2;
}
