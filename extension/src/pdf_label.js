// The label of a local PDF taken from its file name, for the user's own
// displays: the last path segment decoded, without control or line
// separator characters, trimmed, and cut to the recorder's limit of 200
// characters (code points, never half a surrogate pair).

const MAXIMUM_LABEL_CHARACTERS = 200;
const UNWANTED = /[\u0000-\u001f\u007f-\u009f\u2028\u2029]/gu;

function decoded(segment) {
  try {
    return decodeURIComponent(segment);
  } catch {
    return segment;
  }
}

// The label of the PDF at `fileURL`, or undefined when its name leaves
// nothing to show.
export function labelFromFileURL(fileURL) {
  const path = new URL(fileURL).pathname;
  const name = decoded(path.slice(path.lastIndexOf("/") + 1)).replace(UNWANTED, "").trim();
  const label = Array.from(name).slice(0, MAXIMUM_LABEL_CHARACTERS).join("").trim();
  return label.length > 0 ? label : undefined;
}
