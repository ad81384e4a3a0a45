#include "host/common/hosterror.h"
#include "host/common/texts.h"
#include "host/console/cancel.h"
#include "host/console/command.h"

namespace {

// What follows the program's name, last one first, as the parser wants it.
std::vector<std::string> ReversedArguments(int count, wchar_t** arguments) {
    std::vector<std::string> reversed;
    for (int i = count - 1; i > 0; --i)
        reversed.push_back(WideToUtf8(arguments[i]));
    return reversed;
}

void AddCommands(CLI::App& app, CommandAction& action) {
    AddListCommand(app, action);
    AddGatherCommand(app, action, /*upgradeMode=*/false);
    AddCleanCommand(app, action, /*upgradeMode=*/false);
    AddCheckCommand(app, action);
    AddUpdateCommand(app, action);
    AddUpgradeLeftoversCommand(app, action);
}

// Help and the version are for the standard output and no error; everything else is wrong usage, told in one line.
ExitStatus ShowParserText(const CLI::App& app, const CLI::ParseError& error, CConsole& console) {
    if (error.get_exit_code() == 0) {
        const bool isHelp = error.get_name() == "CallForHelp" || error.get_name() == "CallForAllHelp";
        console.out.Write(Utf8ToWide((isHelp ? app.help() : std::string(error.what())) + '\n'));
        return ExitStatus::Done;
    }
    std::string command = "dsw";
    const CLI::App* level = &app;
    while (!level->get_subcommands().empty()) {
        level = level->get_subcommands().back();
        command += ' ' + level->get_name();
    }
    // The parser complains of what is missing first, although that may be what is misspelled.
    const std::vector<std::string> unknown = app.remaining(/*recurse=*/true);
    std::wstring message = Utf8ToWide(error.what());
    if (!unknown.empty()) {
        const bool isName = level->get_require_subcommand_min() > 0 || unknown.front().starts_with('-');
        message = Text(isName ? IDS_UNKNOWN_NAME : IDS_UNKNOWN_WORD, {Utf8ToWide(unknown.front())});
    }
    console.Complain(Text(IDS_USAGE, {message, Utf8ToWide(command)}));
    return ExitStatus::WrongUsage;
}

ExitStatus Run(int count, wchar_t** arguments, CConsole& console) {
    CLI::App app("Finds and deletes the junk that a rule file describes.", "dsw");
    // "/yes" is a path, or a slip of the pen.
    app.allow_windows_style_options(false);
    app.set_version_flag("--version", "dsw " DSW_VERSION);
    AddHelp(app,
            "dsw COMMAND --help tells the options of a command.\n\n"
            "Examples:\n"
            "  dsw list --rules rules.xml\n"
            "  dsw gather --rules rules.xml --items\n"
            "  dsw clean --rules rules.xml --dry-run");
    app.require_subcommand(1);
    CommandAction action;
    AddCommands(app, action);
    try {
        app.parse(ReversedArguments(count, arguments));
    } catch (const CLI::ParseError& error) {
        return ShowParserText(app, error, console);
    }
    return action(console);
}

void ShowError(const std::exception& error, CConsole& console) {
    console.out.Flush();
    try {
        console.Complain(Utf8ToWide(error.what()));
    } catch (const std::exception&) {
        console.Complain(Text(IDS_NO_MEMORY_TO_TELL));
    }
}

}  // namespace

// Patterns are for the tree, not for the files of the current folder.
int _dowildcard = 0;

int wmain(int count, wchar_t** arguments) {
    EndOnCancel();
    CConsole console;
    ExitStatus status = ExitStatus::Failed;
    try {
        status = Run(count, arguments, console);
    } catch (const CUsageError& error) {
        status = ExitStatus::WrongUsage;
        ShowError(error, console);
    } catch (const std::exception& error) {
        ShowError(error, console);
    }
    console.out.Flush();
    // Whoever reads the output must not take a part for the whole.
    if (console.out.Failed() && status == ExitStatus::Done) status = ExitStatus::Failed;
    return static_cast<int>(status);
}
