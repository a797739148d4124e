// Which event a change of the focused browser window is. `previous` is the
// window the extension last knew to have focus and `next` the one that has
// it now, both window ids; `none` is the browser's "no window" id
// (windows.WINDOW_ID_NONE). Focus arriving from no window is the browser
// becoming active, focus leaving for no window is a blur, and a move between
// two windows is a window focus.
//
// Chromium on X11 often does not report focus leaving for another
// application at all; it reports the window again when the user comes back.
// So focus reported for the window that already had it is the browser
// becoming active again.
export function focusEvent(previous, next, none) {
  if (next === none) {
    return previous === none ? undefined : "browserWindowBlurred";
  }
  if (previous === none || previous === next) {
    return "browserBecameActive";
  }
  return "browserWindowFocused";
}
