// Descriptors, signals and the echo of the terminal.
#include "Terminal.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace {

volatile sig_atomic_t nCaughtSignal = 0;

void noteSignal(int nSignal) {
    nCaughtSignal = nSignal;
}

// Switches the echo off for its life. A signal that would end the process interrupts the reading
// instead, and takes its course once the echo is back.
class SilentInput {
public:
    SilentInput() {
        m_bTerminal = tcgetattr(STDIN_FILENO, &m_old) == 0;
        nCaughtSignal = 0;
        struct sigaction note {};
        note.sa_handler = noteSignal;
        sigemptyset(&note.sa_mask);
        for (std::size_t i = 0; i < Signals.size(); ++i) {
            sigaction(Signals[i], &note, &m_arrOld[i]);
        }
        if (m_bTerminal) {
            termios silent = m_old;
            silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
            silent.c_lflag |= ECHONL;
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
        }
    }
    ~SilentInput() {
        if (m_bTerminal) {
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &m_old);
        }
        for (std::size_t i = 0; i < Signals.size(); ++i) {
            sigaction(Signals[i], &m_arrOld[i], nullptr);
        }
        if (nCaughtSignal != 0) {
            raise(nCaughtSignal);
        }
    }
    SilentInput(const SilentInput&) = delete;
    SilentInput& operator=(const SilentInput&) = delete;

private:
    static constexpr std::array<int, 5> Signals = {SIGINT, SIGTERM, SIGQUIT, SIGHUP, SIGTSTP};
    termios m_old{};
    bool m_bTerminal = false;
    std::array<struct sigaction, Signals.size()> m_arrOld{};
};

// Reads past no line, so that the next question finds its answer.
std::optional<std::string> readLine() {
    std::string strLine;
    char cNext = 0;
    while (true) {
        const ssize_t nRead = read(STDIN_FILENO, &cNext, 1);
        if (nRead != 1) {
            return nRead == 0 && !strLine.empty() ? std::optional(strLine) : std::nullopt;
        }
        if (cNext == '\n') {
            return strLine;
        }
        strLine += cNext;
    }
}

}  // namespace

std::FILE* claimStandardOutput() {
    const int nOwn = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (nOwn < 0 || dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
        return nullptr;
    }
    return fdopen(nOwn, "w");
}

bool isTerminal(std::FILE* pStream) {
    return isatty(fileno(pStream)) == 1;
}

std::optional<std::size_t> terminalWidth(std::FILE* pStream) {
    winsize size{};
    const bool bKnown = ioctl(fileno(pStream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return bKnown ? std::optional<std::size_t>(size.ws_col) : std::nullopt;
}

bool canAsk() {
    return isatty(STDIN_FILENO) == 1;
}

std::optional<std::string> askSecret(const std::string& strQuestion) {
    const SilentInput silence;
    std::fprintf(stderr, "%s: ", strQuestion.c_str());
    return readLine();
}

bool askYesNo(const std::string& strQuestion) {
    while (true) {
        std::fprintf(stderr, "%s [yes/no] ", strQuestion.c_str());
        const std::optional<std::string> answer = readLine();
        if (!answer || *answer == "no" || *answer == "n") {
            return false;
        }
        if (*answer == "yes" || *answer == "y") {
            return true;
        }
    }
}
