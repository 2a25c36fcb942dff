// The video library's part of live preview.
#include "device/VideoContext.h"

#include <array>

#include "Product/Technic/ErrorCode.h"

using namespace fleetkit;

namespace {

// Preview always shows the first stream of the first channel.
constexpr int Channel = 1;
constexpr int Stream = 1;
constexpr int OpenMode = 1;
constexpr int ControlAfterStart = 1;
constexpr int MessageSize = 512;

}  // namespace

VideoContext::~VideoContext() {
    if (m_libraries.isLoaded()) {
        stop();
    }
}

void VideoContext::setStream(std::uint32_t hNetLogin, std::uint32_t hPlayer) noexcept {
    if (hNetLogin != 0) {
        m_hNetLogin = hNetLogin;
    }
    m_hPlayer = hPlayer;
}

int VideoContext::start() {
    const int nCode = startVideo();
    if (nCode == ErrorCode::Success) {
        return ErrorCode::Success;
    }
    // The library requires that its error is fetched; callers get ours.
    std::array<char, MessageSize> arrText{};
    m_libraries.net().formatMessage(nCode, arrText.data(), MessageSize);
    return ErrorCode::PreviewFailed;
}

int VideoContext::startVideo() {
    const TarnNetSDK& net = m_libraries.net();
    return inTurn(
        [&] { return net.open(m_hNetLogin, Channel, Stream, OpenMode, &m_hVideoController); },
        [&] { return net.setAVDataCallback(m_hVideoController, onFrame, this); },
        [&] { return net.startVideo(m_hVideoController); },
        [&] { return net.control(m_hVideoController, ControlAfterStart); });
}

void VideoContext::stop() {
    const TarnNetSDK& net = m_libraries.net();
    if (m_hVideoController != 0) {
        net.stopVideo(m_hVideoController);
        net.close(m_hVideoController);
        if (m_hLogoutHandle != 0) {
            net.logout(m_hLogoutHandle);
            m_hLogoutHandle = 0;
        }
    }
    net.unInit();
}

int VideoContext::onFrame(std::uint32_t, void* pFrame, void* pUser) {
    if (pUser != nullptr) {
        const auto& context = *static_cast<const VideoContext*>(pUser);
        context.m_libraries.player().inputAVFrame(context.m_hPlayer, pFrame);
    }
    return 0;
}
