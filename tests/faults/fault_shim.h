#pragma once

/// From now on call NUMBER of that name fails with `error`, or with a short count for 0, and all
/// later ones too if `onwards` is set. Number -1 only counts. See fault_shim.cpp for the names.
extern "C" void setFault(const char* call, long number, int error, bool onwards);
/// Ends that and returns how many calls of the name there were.
extern "C" long endFault();
/// How many blocks of operator new are in use.
extern "C" long blocksInUse();
