#pragma once

#include <string>
#include <vector>

/// A sound to be generated: sine tones that fade out, one after the other.
struct Sound {
    unsigned rate = 44100; ///< Frames per second.
    unsigned channels = 1; ///< The second one is the first an octave lower.
    unsigned bits = 16;    ///< 16 or 24 for each sample.
    double toneSeconds = 0.5;
    std::vector<double> frequencies; ///< In Hz; 0 is a rest.
};

/// The whole bytes of a sound file.
std::string MakeWav(const Sound& sound);
std::string MakeAiff(const Sound& sound);
