// The video stream of live preview: where frames come from and which player they go to.
#pragma once

#include <atomic>
#include <cstdint>

#include "device/PreviewLibraries.h"

// Belongs to the thread that starts the preview, except for the callback, which the video library
// calls on a thread of its own.
class VideoContext {
public:
    VideoContext() = default;
    ~VideoContext();  // stops the video when the libraries were loaded; the player goes on
    VideoContext(const VideoContext&) = delete;
    VideoContext& operator=(const VideoContext&) = delete;

    PreviewLibraries& libraries() noexcept { return m_libraries; }

    // Where frames come from and go to from here on; a login of 0 leaves the one before.
    void setStream(std::uint32_t hNetLogin, std::uint32_t hPlayer) noexcept;

    // PreviewFailed at the first step that fails; what was begun is left to `stop`.
    int start();
    // Ends the video and releases the video library. Results are ignored, and so is whether there
    // was a video: the library takes a repeated end. Logins outlive it: `setStream` marks none to
    // end with the video.
    void stop();

private:
    int startVideo();

    // On the path of every frame: hands it to the player as it came.
    static int onFrame(std::uint32_t hSource, void* pFrame, void* pUser);

    PreviewLibraries m_libraries;
    std::atomic<std::uint32_t> m_hPlayer{0};
    std::uint32_t m_hNetLogin = 0;
    std::uint32_t m_hVideoController = 0;
    std::uint32_t m_hLogoutHandle = 0;  // the login that ends with the video; 0 for none
};
