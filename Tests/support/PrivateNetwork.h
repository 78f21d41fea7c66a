#pragma once

/// Moves this process into a network of its own: loopback is up, multicast goes over it, and nothing else
/// is there. Call it before any thread is started. False where the system does not allow it.
bool EnterPrivateNetwork();

/// What a test program returns that would have announced itself on a real network; CTest counts its test as
/// skipped.
inline constexpr int kSkippedStatus = 77;
