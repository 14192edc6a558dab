# What ctest runs before the tests: none of them works on the machine of whoever runs it. A test that
# needs a state file names one of its own.
set(ENV{HXSIM_STATE} ":memory:")
