#include "platform/linux/x11_frontmost_application.hpp"
#include "recording/session_manager.hpp"

#include <unistd.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/XRes.h>

#include <array>
#include <fstream>
#include <type_traits>
#include <utility>

namespace lumenote::platform::linux_desktop {

// The header spells Xlib's Window and Atom as their underlying type.
static_assert(std::is_same_v<Window, unsigned long> && std::is_same_v<Atom, unsigned long>);

namespace {

// Longest property read, in 32-bit units: class names and application ids
// are short; anything longer is cut here rather than read whole.
constexpr long kMaximumPropertyLength = 256;

// A property's bytes: nullopt when the request failed (the window is gone),
// "" when the window does not have the property or it has another type.
std::optional<std::string> readStringProperty(Display* display, Window window, Atom property,
                                              Atom type) {
    Atom actualType = None;
    int actualFormat = 0;
    unsigned long itemCount = 0;
    unsigned long bytesAfter = 0;
    unsigned char* data = nullptr;
    if (XGetWindowProperty(display, window, property, 0, kMaximumPropertyLength, False, type,
                           &actualType, &actualFormat, &itemCount, &bytesAfter, &data) != Success) {
        return std::nullopt;
    }
    std::string bytes;
    if (data != nullptr && actualType == type && actualFormat == 8) {
        bytes.assign(reinterpret_cast<const char*>(data), itemCount);
    }
    if (data != nullptr) {
        XFree(data);
    }
    return bytes;
}

// The first 32-bit item of a property (Xlib hands 32-bit items over as
// longs): nullopt when the request failed or the property is missing or of
// another type.
std::optional<unsigned long> readCardinalProperty(Display* display, Window window, Atom property,
                                                  Atom type) {
    Atom actualType = None;
    int actualFormat = 0;
    unsigned long itemCount = 0;
    unsigned long bytesAfter = 0;
    unsigned char* data = nullptr;
    if (XGetWindowProperty(display, window, property, 0, 1, False, type, &actualType, &actualFormat,
                           &itemCount, &bytesAfter, &data) != Success) {
        return std::nullopt;
    }
    std::optional<unsigned long> value;
    if (data != nullptr && actualType == type && actualFormat == 32 && itemCount == 1) {
        value = *reinterpret_cast<const unsigned long*>(data);
    }
    if (data != nullptr) {
        XFree(data);
    }
    return value;
}

bool hasClientIdExtension(Display* display) {
    int eventBase = 0;
    int errorBase = 0;
    int major = 0;
    int minor = 0;
    return XResQueryExtension(display, &eventBase, &errorBase) &&
           XResQueryVersion(display, &major, &minor) && (major > 1 || (major == 1 && minor >= 2));
}

}  // namespace

std::string readProcessName(long processID) {
    std::ifstream stream("/proc/" + std::to_string(processID) + "/comm");
    std::string name;
    std::getline(stream, name);
    return name;
}

Result<std::unique_ptr<X11FrontmostApplicationSource>, X11ConnectionError>
X11FrontmostApplicationSource::open(const EnvironmentLookup& environment) {
    auto connection = X11Connection::open(environment);
    if (!connection) {
        return fail(connection.error());
    }
    return std::make_unique<X11FrontmostApplicationSource>(
        std::move(connection).value(), DesktopEntryIndex::load(applicationFolders(environment)),
        readProcessName);
}

X11FrontmostApplicationSource::X11FrontmostApplicationSource(
    std::shared_ptr<X11Connection> connection, DesktopEntryIndex entries,
    ProcessNameReader processName)
    : connection_(std::move(connection)),
      entries_(std::move(entries)),
      processName_(std::move(processName)) {
    Display* display = connection_->display();
    std::array<char*, 4> names{
        const_cast<char*>("_NET_ACTIVE_WINDOW"), const_cast<char*>("_NET_WM_PID"),
        const_cast<char*>("_GTK_APPLICATION_ID"), const_cast<char*>("UTF8_STRING")};
    std::array<Atom, 4> atoms{};
    XInternAtoms(display, names.data(), static_cast<int>(names.size()), False, atoms.data());
    atoms_ = {atoms[0], atoms[1], atoms[2], atoms[3]};
    hasXRes_ = hasClientIdExtension(display);
    XSelectInput(display, connection_->root(), PropertyChangeMask);
    XFlush(display);
}

std::optional<recording::FrontmostApplication>
X11FrontmostApplicationSource::frontmostApplication() {
    if (connection_->lost()) {
        return std::nullopt;
    }
    const auto window = activeWindow();
    // Events that came before the reply are queued by now: a window destroyed
    // before this read must leave the cache before its id is looked up.
    Display* display = connection_->display();
    while (!connection_->lost() && XEventsQueued(display, QueuedAlready) > 0) {
        XEvent event;
        XNextEvent(display, &event);
        handle(event);
    }
    if (!window || connection_->lost()) {
        return std::nullopt;
    }
    if (const auto cached = cache_.find(*window); cached != cache_.end()) {
        return cached->second;
    }
    return resolve(*window);
}

bool X11FrontmostApplicationSource::processEvents() {
    Display* display = connection_->display();
    while (!connection_->lost() && XPending(display) > 0) {
        XEvent event;
        XNextEvent(display, &event);
        handle(event);
    }
    return std::exchange(activeWindowChanged_, false);
}

std::optional<unsigned long> X11FrontmostApplicationSource::activeWindow() {
    const auto window = readCardinalProperty(connection_->display(), connection_->root(),
                                             atoms_.activeWindow, XA_WINDOW);
    if (!window || *window == None) {
        return std::nullopt;
    }
    return *window;
}

std::optional<recording::FrontmostApplication> X11FrontmostApplicationSource::resolve(
    unsigned long window) {
    Display* display = connection_->display();
    // Selected before reading, so that a change or destruction after the
    // reads below always reaches handle() and evicts the cached answer.
    XSelectInput(display, window, StructureNotifyMask | PropertyChangeMask);
    const auto gtkApplicationId =
        readStringProperty(display, window, atoms_.gtkApplicationID, atoms_.utf8String);
    const auto windowClass = readStringProperty(display, window, XA_WM_CLASS, XA_STRING);
    if (!gtkApplicationId || !windowClass) {
        return std::nullopt;
    }
    // The recorder's own windows (the desktop application's panel and
    // questions) are Lumenote itself, whatever their class says, so that
    // looking at the recorder is recorded as its own, ignored activity.
    if (const auto process = processID(window); process && *process == ::getpid()) {
        recording::FrontmostApplication own{"Lumenote", recording::kOwnBundleIdentifier};
        cache_.emplace(window, own);
        return own;
    }
    WindowClassHints hints;
    hints.gtkApplicationId = *gtkApplicationId;
    // WM_CLASS is the instance name and the class name, each ended by a NUL.
    const auto separator = windowClass->find('\0');
    hints.instanceName = windowClass->substr(0, separator);
    if (separator != std::string::npos) {
        const auto classEnd = windowClass->find('\0', separator + 1);
        hints.className = windowClass->substr(
            separator + 1, classEnd == std::string::npos ? classEnd : classEnd - separator - 1);
    }
    if (hints.gtkApplicationId.empty() && hints.instanceName.empty() && hints.className.empty()) {
        if (const auto process = processID(window)) {
            hints.processName = processName_(*process);
        }
    }
    auto application = resolveApplication(entries_, hints);
    cache_.emplace(window, application);
    return application;
}

std::optional<long> X11FrontmostApplicationSource::processID(unsigned long window) {
    Display* display = connection_->display();
    if (const auto property =
            readCardinalProperty(display, window, atoms_.windowProcessID, XA_CARDINAL);
        property && *property > 0) {
        return static_cast<long>(*property);
    }
    // Clients that do not set _NET_WM_PID are still known to the server by
    // their connection, whose process the X-Resource extension reports.
    if (!hasXRes_) {
        return std::nullopt;
    }
    XResClientIdSpec specification{window, XRES_CLIENT_ID_PID_MASK};
    long count = 0;
    XResClientIdValue* values = nullptr;
    if (XResQueryClientIds(display, 1, &specification, &count, &values) != Success) {
        return std::nullopt;
    }
    std::optional<long> found;
    for (long index = 0; index < count && !found; ++index) {
        if (const pid_t process = XResGetClientPid(&values[index]); process > 0) {
            found = process;
        }
    }
    XResClientIdsDestroy(count, values);
    return found;
}

void X11FrontmostApplicationSource::handle(const XEvent& event) {
    if (event.type == DestroyNotify) {
        cache_.erase(event.xdestroywindow.window);
        return;
    }
    if (event.type != PropertyNotify) {
        return;
    }
    const XPropertyEvent& change = event.xproperty;
    if (change.window == connection_->root()) {
        activeWindowChanged_ = activeWindowChanged_ || change.atom == atoms_.activeWindow;
    } else if (change.atom == XA_WM_CLASS || change.atom == atoms_.gtkApplicationID ||
               change.atom == atoms_.windowProcessID) {
        cache_.erase(change.window);
    }
}

}  // namespace lumenote::platform::linux_desktop
