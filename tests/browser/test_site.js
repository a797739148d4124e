// What the browser tests show the browser: a small web server on the
// loopback interface, reached under two hostnames (127.0.0.1 and localhost),
// and a local PDF file.

import { writeFileSync } from "node:fs";
import { createServer } from "node:http";
import { join } from "node:path";
import { pathToFileURL } from "node:url";

function page(title) {
  return `<!doctype html><html><head><meta charset="utf-8"><title>${title}</title></head>` +
    `<body><h1>${title}</h1></body></html>`;
}

// Serves any path as a small page titled after it, on 127.0.0.1 and a port
// the system chooses. Resolves to { origin(hostname), close() }.
export function startTestSite() {
  const server = createServer((request, response) => {
    response.writeHead(200, { "content-type": "text/html; charset=utf-8", "cache-control": "no-store" });
    response.end(page(request.url));
  });
  return new Promise((resolve, reject) => {
    server.once("error", reject);
    server.listen(0, "127.0.0.1", () => {
      const { port } = server.address();
      resolve({
        url: (hostname, path) => `http://${hostname}:${port}${path}`,
        close: () => new Promise((done) => {
          server.close(done);
          server.closeAllConnections();
        }),
      });
    });
  });
}

// A one-page PDF that any viewer opens: the cross-reference table holds the
// byte offset of each object, computed as the file is assembled.
export function pdfDocument(text) {
  const stream = `BT /F1 24 Tf 72 720 Td (${text}) Tj ET`;
  const objects = [
    "<< /Type /Catalog /Pages 2 0 R >>",
    "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
    "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Contents 4 0 R " +
      "/Resources << /Font << /F1 5 0 R >> >> >>",
    `<< /Length ${stream.length} >>\nstream\n${stream}\nendstream`,
    "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>",
  ];
  let body = "%PDF-1.4\n";
  const offsets = objects.map((object, index) => {
    const offset = body.length;
    body += `${index + 1} 0 obj\n${object}\nendobj\n`;
    return offset;
  });
  const xref = body.length;
  body += `xref\n0 ${objects.length + 1}\n0000000000 65535 f \n`;
  body += offsets.map((offset) => `${String(offset).padStart(10, "0")} 00000 n \n`).join("");
  body += `trailer\n<< /Size ${objects.length + 1} /Root 1 0 R >>\nstartxref\n${xref}\n%%EOF\n`;
  return body;
}

// Writes a PDF named `name` into `folder`; returns its file:// URL.
export function writeLocalPDF(folder, name) {
  const path = join(folder, name);
  writeFileSync(path, pdfDocument("Lecture notes"), "latin1");
  return pathToFileURL(path).href;
}
