// Carries the precompiled headers of the rooms and of the tests.
