#pragma once

#include "AiffState.h"

/// Reads the chunks of an AIFF file from the start of its stream until both COMM and SSND are known, and
/// leaves the stream at the first sample. Only fields that passed their checks are set. Throws the messages
/// of cReadAIFF.
void ReadAiffHeader(sAiffState& zrState);
