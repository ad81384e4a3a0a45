#include "host/console/updatecommand.h"

#include <filesystem>

#include "host/common/amount.h"
#include "host/common/enginemodule.h"
#include "host/common/executable.h"
#include "host/common/hosterror.h"
#include "host/common/sizetext.h"
#include "host/common/texts.h"
#include "host/common/updatemessage.h"
#include "host/console/cancel.h"
#include "sysservices/handle.h"
#include "update/rulefilelist.h"

namespace {

// `text` is what to say of any other code than success.
void Require(uint32_t code, unsigned text, const CString& address = {}) {
    if (code != InternetFileResult::kSuccess) throw CHostError(Text(text, {UpdateMessage(code), address}));
}

// The update object, ready for the length of the scope.
class CUpdate {
public:
    CUpdate() : m_object(m_module.UpdateObject()) {
        if (!m_object) throw CHostError(UpdateMessage(InternetFileResult::kFileNotReady));
        Require(m_object->Init(), IDS_UPDATE_NOT_BEGUN);
    }
    ~CUpdate() { m_object->Uninit(); }
    CUpdate(const CUpdate&) = delete;
    CUpdate& operator=(const CUpdate&) = delete;

    IInternetFileProc* operator->() const noexcept { return m_object.get(); }

private:
    const CEngineModule m_module;
    const CReference<IInternetFileProc> m_object;
};

// The answers of the update object do not tell a disk that refuses from a server that does.
void RequireWritable(const CString& folder) {
    const DWORD attributes = GetFileAttributesW(folder.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_DIRECTORY))
        throw CHostError(Text(IDS_TARGET_MISSING, {folder}));
    const CString probe = JoinPath(folder, L"dsw-probe.tmp");
    const CHandle file(
        CreateFileW(probe.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    const DWORD error = GetLastError();
    if (!file && error != ERROR_FILE_EXISTS)
        throw CHostError(Text(IDS_TARGET_NOT_WRITABLE, {folder, std::to_wstring(error)}));
}

Amount PrintFetched(COutput& out, const CString& folder, const CString& listUrl) {
    Amount fetched;
    for (const CString& name : ReadRuleFileList(JoinPath(folder, listUrl.substr(listUrl.rfind(L'/') + 1)))) {
        std::error_code error;
        const auto bytes = std::filesystem::file_size(JoinPath(folder, name), error);
        if (error) continue;
        out.Line(L"  " + name + L"  " + ReadableSize(bytes));
        fetched += {1, bytes};
    }
    return fetched;
}

// Where the update object keeps the version; see IInternetFileProc::Init.
CString VersionFile() {
    const CString executable = ExecutablePath();
    return JoinPath(executable.substr(0, executable.size() - executable.rfind(L'\\')), L"dswconfig.ini");
}

void KeepVersion(const CUpdate& update, uint32_t version, CConsole& console) {
    update->SetConfigVersion(version);
    const CString file = VersionFile();
    if (GetPrivateProfileIntW(L"Config", L"version", 0, file.c_str()) != version)
        console.Complain(Text(IDS_VERSION_NOT_KEPT, {file}));
}

// The version on the server, or nothing when it is not newer than the installed one.
std::optional<uint32_t> NewerVersion(const CUpdate& update, const CString& url, COutput& out) {
    uint32_t installed = 0;
    Require(update->GetCurConfigVersion(&installed), IDS_INSTALLED_VERSION_UNKNOWN);
    out.Line(Text(IDS_INSTALLED_VERSION, {std::to_wstring(installed)}));
    if (url.empty()) return installed;
    uint32_t published = 0;
    Require(update->GetWanConfigVersion(url.c_str(), &published), IDS_PUBLISHED_VERSION_UNKNOWN, url);
    if (published == 0) throw CHostError(Text(IDS_NO_VERSION_NUMBER, {url}));
    out.Line(Text(IDS_PUBLISHED_VERSION, {std::to_wstring(published)}));
    if (published > installed) return published;
    return {};
}

}  // namespace

ExitStatus RunUpdate(const UpdateOptions& options, CConsole& console) {
    const CString list = Utf8ToWide(options.list);
    const CString folder = Utf8ToWide(options.folder);
    const CString versionUrl = Utf8ToWide(options.versionUrl);
    RequireWritable(folder);
    const CCancel cancel;
    const CUpdate update;
    const auto version = NewerVersion(update, versionUrl, console.out);
    if (!version) {
        console.out.Line(Text(IDS_UP_TO_DATE));
        return ExitStatus::Done;
    }
    if (cancel.Requested()) {
        console.Complain(Text(IDS_UPDATE_STOPPED));
        return ExitStatus::Stopped;
    }
    Require(update->GetFileListFromURL(list.c_str(), folder.c_str()), IDS_FILES_NOT_FETCHED, list);
    const Amount fetched = PrintFetched(console.out, folder, list);
    if (fetched.items == 0) throw CHostError(Text(IDS_LIST_IS_EMPTY, {list}));
    if (!versionUrl.empty()) KeepVersion(update, *version, console);
    console.out.Line(Text(IDS_FETCHED, {ItemCount(fetched.items), FullSize(fetched.bytes), folder}));
    return ExitStatus::Done;
}

void AddUpdateCommand(CLI::App& app, CommandAction& action) {
    CLI::App* command = app.add_subcommand("update", "Fetch new rule files from a server");
    const auto options = std::make_shared<UpdateOptions>();
    command->add_option("--list", options->list, "The list of the files, which lie beside it")
        ->type_name("URL")
        ->required();
    command->add_option("--to", options->folder, "The folder whose files are replaced")
        ->type_name("FOLDER")
        ->required();
    command
        ->add_option("--version-url", options->versionUrl, "The number of the published version; fetch only if newer")
        ->type_name("URL");
    AddHelp(
        *command,
        "Nothing is signed: look at what came with dsw check and dsw gather before the first dsw clean. When a file\n"
        "cannot be fetched the old files stay as they are; copies that did arrive end in _bak. Ctrl-C stops before\n"
        "the files are fetched; a second one ends dsw at once.\n\n"
        "Example:\n"
        "  dsw update --list http://server/rules/list.txt --to C:\\Rules --version-url http://server/rules/version");
    SetAction(*command, action, options, RunUpdate);
}
