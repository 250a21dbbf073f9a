// Carries the precompiled GoogleTest headers that all tests share.
