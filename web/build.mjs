// Bundles the page: node build.mjs MODULE_FOLDER TEMPLATE
import { build } from "esbuild";
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { dirname, resolve } from "node:path";
import { fileURLToPath } from "node:url";

const [moduleFolder, template] = process.argv.slice(2).map((path) => resolve(path));
const folder = dirname(fileURLToPath(import.meta.url));
const { outputFiles } = await build({
  absWorkingDir: folder,
  entryPoints: ["src/main.ts"],
  bundle: true,
  minify: true,
  format: "iife",
  target: "es2022",
  write: false,
  alias: { "vexa-module": `${moduleFolder}/vexa_module.mjs` },
  logLevel: "warning",
});
// A function as replacement: "$&" in a program is no pattern.
const script = outputFiles[0].text.replaceAll("</script", "<\\/script");
const page = readFileSync(folder + "/src/page.html", "utf8")
  .replace("@STYLE@", () => readFileSync(folder + "/src/page.css", "utf8"))
  .replace("@MODULE@", () => readFileSync(`${moduleFolder}/vexa_module.wasm`, "base64"))
  .replace("@SCRIPT@", () => script);
mkdirSync(dirname(template), { recursive: true });
writeFileSync(template, page);
console.log(`${template}: ${page.length} bytes`);
