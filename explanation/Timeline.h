#pragma once

#include "LYRThrTimeListener.h"
#include "explanation/ReportFile.h"
#include "explanation/TraceEvent.h"
#include "support/Listener.h"

#include <map>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <unordered_set>

namespace lyr::internal {

struct Asked;

/// Writes what happens when in the process to a file that trace viewers open, as LYRDebug asks for
/// it: each event at its end and in one piece, so that nothing is lost but what was under way when
/// the process is killed. Any thread may call at any time, and hold any lock of the tables.
class Timeline final : public LYRThrTimeListener {
public:
    /// The timeline of the process, made when it is first asked for; null without memory. It lives
    /// as long as the process.
    static Timeline* Instance() noexcept;

    /// Writes to the file from now on, which begins anew unless it is the one before; to none for
    /// an empty path. Whether it writes; where it cannot, that is told.
    bool Set(const std::string& path);

    void AfterSearch(const LYRSysTSMetaClass& asked, const GUID& iid, const Notes& notes,
                     bool isFound) noexcept;
    void AfterCreation(const Notes& notes, bool isMade) noexcept;
    void AfterFile(const FileReading& file) noexcept;
    void AfterScan(Clock::time_point begin) noexcept;
    void AfterLoad(const char* library, const char* file, const char* words,
                   LYRThrLoadListener* listener, Clock::time_point begin) noexcept override;
    void AfterWait(const LYRMutex* mutex, Clock::time_point begin) noexcept override;

private:
    void Write(const TraceEvent& event);
    bool Append(const TraceEvent& event);
    void NameThread();
    /// Tells that the file has failed; where no lock of the tables is held.
    void TellFailure();
    bool IsFirst(const std::string& creation);

    static void RegisterWithFork();

    std::mutex _mutex;  // guards all that follows; nothing is said under it, nor another lock taken
    std::string _path;  // of the file
    ReportFile _file;
    bool _isOn = false;
    int _error = 0;                         // with which the file has failed, until that is told
    std::map<pid_t, std::string> _threads;  // the names that the file gives them
    std::unordered_set<std::string> _creations;
};

}  // namespace lyr::internal
