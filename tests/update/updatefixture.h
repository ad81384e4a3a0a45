#pragma once

#include <gmock/gmock.h>

#include <string>
#include <string_view>

#include "sysservices/reference.h"
#include "tests/support/iatpatch.h"
#include "tests/support/loopbackhttp.h"
#include "tests/support/tempfolder.h"
#include "update/internetfileproc.h"

// What the replaced platform functions do instead of their work; the defaults disturb nothing but row 0.
struct Faults {
    bool asyncRow = false;       // lets row 0 open: its requests reach the server at times of their own
    bool noRoots = false;        // InternetOpenW fails
    bool noProxy = false;        // InternetQueryOptionW fails
    bool noAvailable = false;    // InternetQueryDataAvailable fails
    bool zeroAvailable = false;  // InternetQueryDataAvailable tells 0
    int firstFailingRead = 0;    // number of the first InternetReadFile that fails, from 1; 0 for none
    int lastFailingRead = 1 << 30;
    int reads = 0;                 // calls of InternetReadFile so far
    DWORD size = 0;                // told by InternetSetFilePointer; 0 for the announced length
    std::wstring_view executable;  // told by GetModuleFileNameW
};
extern Faults g_faults;

// Real WinINet and a real server; the INI file lies in the temporary folder.
class UpdateTest : public testing::Test {
protected:
    UpdateTest();
    ~UpdateTest() override;

    std::wstring IniFile() const { return m_folder / L"dswconfig.ini"; }

    TempFolder m_folder;
    LoopbackHttp m_server;
    CReference<CInternetFileProc> m_update{new CInternetFileProc};

private:
    std::wstring m_executable;
    IatPatch m_patches[6];
};

// Keeps what it was told: "B" OnBegin, "?" IsCancelled, "D" OnData, "C" OnComplete.
class RecordingSink : public IInternetDataSink {
public:
    void OnBegin(uint32_t totalSize) override;
    uint32_t IsCancelled() override { return Note('?'), m_cancelAt != 0 && --m_cancelAt == 0; }
    uint32_t OnData(const uint8_t* buffer, uint32_t length) override;
    void OnComplete() override { Note('C'); }

    std::string m_calls;
    std::string m_bytes;
    uint32_t m_announced = 0;
    int m_cancelAt = 0;  // number of the question that is answered with yes
    bool m_refuses = false;
    char m_throwsIn = 0;  // the letter of the call that throws

private:
    void Note(char call);
};
