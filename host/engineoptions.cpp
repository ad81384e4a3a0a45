#include "host/engineoptions.h"

void AddFileOptions(CLI::App& command, EngineOptions& options) {
    command.add_option("--rules", options.rules, "The rule file (XML)")->type_name("FILE")->required();
    command.add_option("--text", options.text, "The file with the localised names (XML)")->type_name("FILE");
}

void AddScopeOptions(CLI::App& command, EngineOptions& options) {
    AddSelectionOptions(command, options.selection);
    command
        .add_option_function<std::string>(
            "--allow", [&options](const std::string& prefix) { options.allowed.push_back(prefix); },
            "Scan only folders whose path begins so; a further one adds. No limit for single files, registry and shell")
        ->type_name("PREFIX")
        // Every path begins with it: a variable of a script that is not set would allow everything.
        ->check([](const std::string& prefix) { return std::string(prefix.empty() ? "the prefix is empty" : ""); })
        ->trigger_on_parse();
}
