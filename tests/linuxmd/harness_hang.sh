#!/bin/sh
# A guest that never ends is ended.
# expect: 124
# limit: 20
while :; do sleep 1000; done
