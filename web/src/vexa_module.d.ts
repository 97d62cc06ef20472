// The module that web/CMakeLists.txt builds.
declare module "vexa-module" {
  export interface VexaModule {
    HEAPF32: Float32Array;
    HEAPF64: Float64Array;
    HEAPU32: Uint32Array;
    FS: {
      mkdir(path: string): void;
      writeFile(path: string, bytes: Uint8Array | string): void;
    };
    cwrap(name: string, result: string | null, parameters: string[]): (...all: never[]) => never;
  }
  const create: (options: { wasmBinary: Uint8Array; printErr(text: string): void; print(text: string): void }) => Promise<VexaModule>;
  export default create;
}
