// Lumenote's KWin script (plugin "lumenote-activation"): tells Lumenote which
// application owns the window KWin activates, by calling
// com.tallywise.Lumenote.KWinObserver over the session bus.
//
// Only the window's class, instance name, desktop file name and process id
// are sent. The caption (the window title) is never read: it can hold the
// name of a document or a web page.
//
// Plasma 6 names the signal workspace.windowActivated and the current window
// workspace.activeWindow; Plasma 5 names them clientActivated and
// activeClient. Plasma 5.27 reports resourceClass and resourceName as
// strings; older releases gave byte arrays, which are decoded here.
var LumenoteActivation = (function () {
    "use strict";

    var service = "com.tallywise.Lumenote.KWinObserver";
    var path = "/com/tallywise/Lumenote/KWinObserver";
    var iface = "com.tallywise.Lumenote.KWinObserver";

    // Bytes as UTF-8 text; as Latin-1 when they are not valid UTF-8.
    function decodeBytes(bytes) {
        var escaped = "";
        var latin1 = "";
        for (var i = 0; i < bytes.length; ++i) {
            escaped += "%" + (bytes[i] < 16 ? "0" : "") + bytes[i].toString(16);
            latin1 += String.fromCharCode(bytes[i]);
        }
        try {
            return decodeURIComponent(escaped);
        } catch (error) {
            return latin1;
        }
    }

    // A window property as text: "" when it is missing or not text-like.
    function text(value) {
        if (typeof value === "string") {
            return value;
        }
        if (typeof ArrayBuffer !== "undefined" && value instanceof ArrayBuffer) {
            return decodeBytes(new Uint8Array(value));
        }
        return "";
    }

    // The process id as a D-Bus int32: 0 when unknown or out of range.
    function processId(value) {
        var number = Number(value);
        if (!isFinite(number) || Math.floor(number) !== number || number <= 0 ||
            number > 2147483647) {
            return 0;
        }
        return number;
    }

    // The arguments of WindowActivated(s resourceClass, s resourceName,
    // s desktopFileName, i pid) for a window; null when no window is active.
    function activationArguments(window) {
        if (window === null || window === undefined) {
            return null;
        }
        return [text(window.resourceClass), text(window.resourceName),
                text(window.desktopFileName), processId(window.pid)];
    }

    // Sends one report: WindowActivated for a window, NoWindowActive for none.
    function report(callDBus, window) {
        var args = activationArguments(window);
        if (args === null) {
            callDBus(service, path, iface, "NoWindowActive");
        } else {
            callDBus(service, path, iface, "WindowActivated", args[0], args[1], args[2], args[3]);
        }
    }

    // Follows activations from now on and reports the window active now.
    function start(workspace, callDBus) {
        var plasma6 = workspace.windowActivated !== undefined;
        var activated = plasma6 ? workspace.windowActivated : workspace.clientActivated;
        activated.connect(function (window) {
            report(callDBus, window);
        });
        report(callDBus, plasma6 ? workspace.activeWindow : workspace.activeClient);
    }

    return {
        service: service,
        path: path,
        iface: iface,
        activationArguments: activationArguments,
        report: report,
        start: start
    };
})();

if (typeof workspace !== "undefined" && typeof callDBus === "function") {
    LumenoteActivation.start(workspace, callDBus);
}
