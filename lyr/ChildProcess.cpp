#include "lyr/ChildProcess.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <exception>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <string_view>
#include <sys/mman.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace lyr::program {

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void Fail(int error, const char* what) {
    throw std::system_error(error, std::generic_category(), what);
}

/// A file descriptor that is closed in the end, and in children from the start.
class Descriptor {
public:
    /// Takes over an open one, and moves it to where no child expects another: above 2 and 3.
    explicit Descriptor(int open) {
        constexpr int kFirst = 10;
        _number = open < 0 ? -1 : ::fcntl(open, F_DUPFD_CLOEXEC, kFirst);
        const int error = errno;
        if (open >= 0) ::close(open);
        if (_number < 0) Fail(error, "a file descriptor for a child process");
    }
    ~Descriptor() { Close(); }
    Descriptor(Descriptor&& other) noexcept : _number(std::exchange(other._number, -1)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;

    int Number() const { return _number; }
    void Close() {
        if (_number >= 0) ::close(_number);
        _number = -1;
    }

private:
    int _number;
};

/// Both ends of a pipe; what is read of it does not wait.
struct Pipe {
    static Pipe Make() {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) Fail(errno, "a pipe to a child process");
        ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
        Descriptor read(ends[0]);
        return {std::move(read), Descriptor(ends[1])};
    }

    Descriptor read;
    Descriptor write;
};

Descriptor FileOf(const std::string& text) {
    Descriptor file(::memfd_create("task", MFD_CLOEXEC));
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t count = ::write(file.Number(), text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR) Fail(errno, "the task of a child process");
        if (count > 0) done += static_cast<std::size_t>(count);
    }
    ::lseek(file.Number(), 0, SEEK_SET);
    return file;
}

std::vector<std::string> EnvironmentOf(const ChildTask& task) {
    std::vector<std::string> all;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        const std::string_view name = text.substr(0, text.find('='));
        const auto& ours = task.environment;
        const bool isReplaced = std::any_of(ours.begin(), ours.end(),
                                            [&](const auto& one) { return one.first == name; });
        if (!isReplaced) all.emplace_back(text);
    }
    for (const auto& [name, value] : task.environment) {
        if (!value.empty()) all.emplace_back(name).append("=").append(value);
    }
    return all;
}

/// How the child of a task is started: with a process group of its own, and none of our signals
/// blocked.
class Start {
public:
    Start() {
        ::posix_spawnattr_init(&_attributes);
        ::posix_spawn_file_actions_init(&_actions);
        sigset_t none;
        ::sigemptyset(&none);
        ::posix_spawnattr_setsigmask(&_attributes, &none);
        ::posix_spawnattr_setpgroup(&_attributes, 0);
        ::posix_spawnattr_setflags(&_attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
    }
    ~Start() {
        ::posix_spawnattr_destroy(&_attributes);
        ::posix_spawn_file_actions_destroy(&_actions);
    }
    Start(const Start&) = delete;
    Start& operator=(const Start&) = delete;

    void Give(const Descriptor& file, int as) {
        ::posix_spawn_file_actions_adddup2(&_actions, file.Number(), as);
    }

    pid_t Run(const ChildTask& task) const {
        std::vector<std::string> variables = EnvironmentOf(task);
        std::vector<char*> environment;
        environment.reserve(variables.size() + 1);
        for (std::string& variable : variables) environment.push_back(variable.data());
        environment.push_back(nullptr);
        std::string name = "lyr";
        std::string command = task.command;
        std::array<char*, 3> words{name.data(), command.data(), nullptr};
        pid_t process = 0;
        const int error = ::posix_spawn(&process, "/proc/self/exe", &_actions, &_attributes,
                                        words.data(), environment.data());
        if (error != 0) Fail(error, "a child process cannot be started");
        return process;
    }

private:
    posix_spawnattr_t _attributes{};
    posix_spawn_file_actions_t _actions{};
};

/// Adds what can be read at once; false behind the end.
bool ReadInto(std::string& text, const Descriptor& file) {
    std::array<char, 65536> piece{};
    for (;;) {
        const ssize_t count = ::read(file.Number(), piece.data(), piece.size());
        if (count > 0) {
            text.append(piece.data(), static_cast<std::size_t>(count));
            return true;
        }
        if (count < 0 && errno == EINTR) continue;
        return count < 0 && errno == EAGAIN;
    }
}

/// Keeps as much of the text's end as a line may be long.
void KeepEnd(std::string& text) {
    constexpr std::size_t kMost = 4096;
    if (text.size() > kMost) text.erase(0, text.size() - kMost);
}

std::string LastLine(std::string_view text) {
    const std::size_t end = text.find_last_not_of(" \t\r\n");
    if (end == std::string_view::npos) return {};
    text = text.substr(0, end + 1);
    return std::string(text.substr(text.rfind('\n') + 1));
}

/// Whether the process has ended; it is not reaped.
bool HasEnded(pid_t process) {
    siginfo_t info{};
    return ::waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
           info.si_pid == process;
}

/// Reads what the child writes until it ends or its time is over; true when it has ended.
bool Listen(pid_t process, Clock::time_point limit, Pipe& reply, Pipe& output, ChildEnd& end) {
    constexpr std::size_t kMostReply = 64U << 20U;
    constexpr int kTick = 5;  // milliseconds
    std::string said;
    bool hasEnded = false;
    while (!hasEnded && Clock::now() < limit) {
        std::array<pollfd, 2> files{pollfd{reply.read.Number(), POLLIN, 0},
                                    pollfd{output.read.Number(), POLLIN, 0}};
        ::poll(files.data(), files.size(), kTick);
        // Looked at first, so that all that it has written is read behind.
        hasEnded = HasEnded(process);
        for (int pieces = 0; pieces < 100; ++pieces) {
            const std::size_t before = end.reply.size() + said.size();
            if (!ReadInto(end.reply, reply.read)) reply.read.Close();
            if (!ReadInto(said, output.read)) output.read.Close();
            if (end.reply.size() + said.size() == before) break;
            KeepEnd(said);
        }
        if (end.reply.size() > kMostReply) break;
    }
    end.lastLine = LastLine(said);
    return hasEnded;
}

ChildEnd RunChild(const ChildTask& task) {
    const Descriptor input = FileOf(task.input);
    Pipe reply = Pipe::Make();
    Pipe output = Pipe::Make();
    Start start;
    start.Give(input, STDIN_FILENO);
    start.Give(output.write, STDOUT_FILENO);
    start.Give(output.write, STDERR_FILENO);
    start.Give(reply.write, kReplyDescriptor);
    const Clock::time_point limit = Clock::now() + task.limit;
    const pid_t process = start.Run(task);
    reply.write.Close();
    output.write.Close();

    ChildEnd end;
    const bool hasEnded = Listen(process, limit, reply, output, end);
    ::kill(-process, SIGKILL);  // also what it has started and left behind
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    if (!hasEnded) {
        end.way = ChildEnd::Way::TimeLimit;
    } else if (WIFSIGNALED(status)) {
        end.way = ChildEnd::Way::Signal;
        end.code = WTERMSIG(status);
    } else {
        end.code = WEXITSTATUS(status);
    }
    return end;
}

}  // namespace

std::vector<ChildEnd> RunChildren(const std::vector<ChildTask>& tasks) {
    std::vector<ChildEnd> ends(tasks.size());
    std::vector<std::exception_ptr> failures(tasks.size());
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (std::size_t i = next++; i < tasks.size(); i = next++) {
            try {
                ends[i] = RunChild(tasks[i]);
            } catch (...) {
                failures[i] = std::current_exception();
            }
        }
    };
    const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
    {
        std::vector<std::jthread> workers;
        for (std::size_t i = 0; i < std::min(processors, tasks.size()); ++i) {
            workers.emplace_back(work);
        }
    }
    for (const std::exception_ptr& failure : failures) {
        if (failure != nullptr) std::rethrow_exception(failure);
    }
    return ends;
}

}  // namespace lyr::program
