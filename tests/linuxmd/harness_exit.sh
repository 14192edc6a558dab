#!/bin/sh
# A story's exit code comes out of the guest.
# expect: 3
exit 3
