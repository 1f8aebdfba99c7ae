#include "host/message_routing.h"

#include <algorithm>
#include <iterator>

namespace {

template <class Rule> struct Row {
    UINT message;
    Rule rule;
};

template <class Rule, std::size_t N>
Rule localFind(const Row<Rule> (&table)[N], UINT message, Rule otherwise) {
    const auto row = std::find_if(std::begin(table), std::end(table),
                                  [message](const Row<Rule>& r) { return r.message == message; });
    return row != std::end(table) ? row->rule : otherwise;
}

enum class SysRule { Forward, Create, Destroy, UnlessClosing, SystemCommand, Timer };
constexpr Row<SysRule> kSysRules[] = {
    {WM_CREATE, SysRule::Create},
    {WM_DESTROY, SysRule::Destroy},
    {WM_ACTIVATE, SysRule::UnlessClosing},
    {WM_ACTIVATEAPP, SysRule::UnlessClosing},
    {WM_NCACTIVATE, SysRule::UnlessClosing},
    {WM_KEYDOWN, SysRule::UnlessClosing},
    {WM_SYSKEYDOWN, SysRule::UnlessClosing},
    {WM_MOUSEMOVE, SysRule::UnlessClosing},
    {WM_LBUTTONDOWN, SysRule::UnlessClosing},
    {WM_RBUTTONDOWN, SysRule::UnlessClosing},
    {WM_MBUTTONDOWN, SysRule::UnlessClosing},
    {WM_PAINT, SysRule::UnlessClosing},
    {WM_SYSCOMMAND, SysRule::SystemCommand},
    {WM_TIMER, SysRule::Timer},
};

// Nothing may put another window, or another saver, in front of this one.
constexpr WPARAM kSwallowedCommands[] = {SC_NEXTWINDOW, SC_PREVWINDOW, SC_CLOSE, SC_SCREENSAVE};

constexpr Row<SaverAction> kSaverActions[] = {
    {WM_CREATE, SaverAction::Create},     {WM_DESTROY, SaverAction::Destroy},
    {WM_CLOSE, SaverAction::Close},       {WM_ERASEBKGND, SaverAction::KeepBackground},
    {WM_PAINT, SaverAction::KeepPainted}, {WM_KEYDOWN, SaverAction::Key},
    {WM_KEYUP, SaverAction::Key},         {WM_CHAR, SaverAction::Key},
    {WM_SYSKEYDOWN, SaverAction::Key},    {WM_SYSKEYUP, SaverAction::Key},
    {WM_SYSCHAR, SaverAction::Key},       {WM_SIZE, SaverAction::Resized},
};

enum class DefRule { Default, Close, VerifyPassword, Cursor, Activation, PointerMoved, CloseRequest };
constexpr Row<DefRule> kDefRules[] = {
    {WM_CLOSE, DefRule::Close},
    {SCRM_VERIFYPW, DefRule::VerifyPassword},
    {WM_SETCURSOR, DefRule::Cursor},
    {WM_ACTIVATE, DefRule::Activation},
    {WM_ACTIVATEAPP, DefRule::Activation},
    {WM_NCACTIVATE, DefRule::Activation},
    {WM_MOUSEMOVE, DefRule::PointerMoved},
    {WM_KEYDOWN, DefRule::CloseRequest},
    {WM_SYSKEYDOWN, DefRule::CloseRequest},
    {WM_LBUTTONDOWN, DefRule::CloseRequest},
    {WM_RBUTTONDOWN, DefRule::CloseRequest},
    {WM_MBUTTONDOWN, DefRule::CloseRequest},
};

} // namespace

SysAction RouteSysMessage(UINT message, WPARAM wParam, bool preview, bool closing) {
    switch (localFind(kSysRules, message, SysRule::Forward)) {
    case SysRule::Create:
        return SysAction::Create;
    case SysRule::Destroy:
        return SysAction::Destroy;
    case SysRule::UnlessClosing:
        return closing ? SysAction::Default : SysAction::Forward;
    case SysRule::Timer:
        return closing ? SysAction::Swallow : SysAction::Forward;
    case SysRule::SystemCommand: {
        const bool listed = std::ranges::find(kSwallowedCommands, wParam) != std::end(kSwallowedCommands);
        return listed && !preview ? SysAction::Swallow : SysAction::Forward;
    }
    case SysRule::Forward:
        break;
    }
    return SysAction::Forward;
}

SaverAction RouteSaverMessage(UINT message) {
    return localFind(kSaverActions, message, SaverAction::Default);
}

DefAction RouteDefMessage(UINT message, WPARAM wParam, bool preview, bool closing, bool checkingPassword) {
    if (preview || closing)
        return DefAction::Default;
    switch (localFind(kDefRules, message, DefRule::Default)) {
    case DefRule::Close:
        return checkingPassword ? DefAction::Swallow : DefAction::Close;
    case DefRule::VerifyPassword:
        return DefAction::VerifyPassword;
    case DefRule::Cursor:
        return checkingPassword ? DefAction::Default : DefAction::HideCursor;
    case DefRule::Activation: // losing the screen counts as a move of the mouse, gaining it as nothing
        return wParam != 0 ? DefAction::Default : DefAction::PointerMoved;
    case DefRule::PointerMoved:
        return DefAction::PointerMoved;
    case DefRule::CloseRequest:
        return DefAction::CloseRequest;
    case DefRule::Default:
        break;
    }
    return DefAction::Default;
}

bool SaverMayClose(bool preview, bool escapeHit, bool started, double now, double startTime) {
    constexpr double kGraceSeconds = 4.0;
    if (preview || escapeHit)
        return true;
    return started && now - startTime > kGraceSeconds;
}
