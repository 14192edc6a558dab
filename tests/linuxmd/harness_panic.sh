#!/bin/sh
# A guest that dies is told from one whose story has failed.
# expect: 125
echo c >/proc/sysrq-trigger
sleep 100000
