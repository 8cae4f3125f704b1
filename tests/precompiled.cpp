// Stands for the headers that tests/GoogleTests.cmake has compiled before.
