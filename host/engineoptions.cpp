#include "host/engineoptions.h"

void AddEngineOptions(CLI::App& command, EngineOptions& options) {
    command.add_option("--rules", options.rules, "The rule file (XML)")->type_name("FILE")->required();
    command.add_option("--text", options.text, "The file with the localised names (XML)")->type_name("FILE");
}
