// The base of a decoded command head.
#pragma once

// What a transport keeps of a message that it has read. Which kind of head stands behind it is told
// by the parser that made it; `SDKCommandHeadInfo` is the only kind.
class CommandHeadInfo {
public:
    virtual ~CommandHeadInfo() = default;

protected:
    CommandHeadInfo() = default;
    CommandHeadInfo(const CommandHeadInfo&) = default;
    CommandHeadInfo& operator=(const CommandHeadInfo&) = default;
};
