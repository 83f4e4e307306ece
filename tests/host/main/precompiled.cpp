// Carries the precompiled header of the host tests; there is nothing else in it.
