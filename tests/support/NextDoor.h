// Devices in a process of their own, which nothing that is done to this one touches.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <stdexcept>
#include <tuple>

// `Ports` is what is to be known of the devices; its bytes are what is copied. They end with this
// object, or with this process.
template <class Ports>
class NextDoor {
public:
    using Serve = std::function<void(const Ports&)>;

    // `open` makes the devices over there, and serves for as long as its argument takes.
    explicit NextDoor(const std::function<void(const Serve&)>& open) {
        int arrPorts[2];
        int arrEnd[2];
        if (pipe(arrPorts) != 0 || pipe(arrEnd) != 0) {
            throw std::runtime_error("no pipe");
        }
        m_nProcess = fork();
        if (m_nProcess == 0) {
            close(arrEnd[1]);
            open([&](const Ports& ports) {
                char cEnd = 0;
                std::ignore = write(arrPorts[1], &ports, sizeof(ports));
                std::ignore = read(arrEnd[0], &cEnd, sizeof(cEnd));
            });
            _exit(0);
        }
        close(arrEnd[0]);
        m_nEnd = arrEnd[1];
        std::ignore = read(arrPorts[0], &m_ports, sizeof(m_ports));
    }

    NextDoor(const NextDoor&) = delete;
    NextDoor& operator=(const NextDoor&) = delete;

    ~NextDoor() {
        close(m_nEnd);
        waitpid(m_nProcess, nullptr, 0);
    }

    const Ports& ports() const { return m_ports; }

private:
    pid_t m_nProcess = -1;
    int m_nEnd = -1;
    Ports m_ports{};
};
