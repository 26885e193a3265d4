#!/usr/bin/env bash
# robust.sh MODULE: the server quarns_MODULE against simulators that misbehave.
set -u
m=$1
fail() { echo "robust: $*"; for f in *.log; do echo "--- $f"; cat "$f"; done; exit 1; }
g++ "quarns_$m.cc" quarns_data_user_int.cc -o "quarns_$m" 2> build.log || fail "the server does not build"
mkdir -p silent dies
printf '#!/bin/sh\nexit 0\n' > silent/quarns
printf '#!/bin/bash\nexec 3<>"/dev/tcp/$2/$3"\nexit 0\n' > dies/quarns
chmod +x silent/quarns dies/quarns

# A simulator that never connects: the server gives up after the socket time-out.
PATH=$PWD/silent:$PATH QUARN_SOCKET_TIMEOUT=2 timeout 30 "./quarns_$m" 2> silent.log
[ $? = 1 ] || fail "silent: status"
grep -q "no connexion of the simulator quarns within 2 seconds" silent.log || fail "silent: message"

# A simulator that connects and dies: the server ends at once, with status 0.
PATH=$PWD/dies:$PATH timeout 30 "./quarns_$m" 2> dies.log
[ $? = 0 ] || fail "dies: status"
grep -q "SOCKET accepted" dies.log || fail "dies: no connexion"

# The server dies in the user's code: quarns sees the closed socket.
printf '/\nTICK STEP=999 /\n' > crash.trace
QUARNS_TRACE=crash.trace timeout 60 "$QUARNC" -qnc -valued_simul -main "$m" "$m.qn" > crash.out 2> crash.log
[ $? = 1 ] || fail "crash: quarnc status"
grep -q "the server quarns_$m ended with a failure" crash.log || fail "crash: quarnc message"
for i in $(seq 50); do grep -q "connexion is closed" crash.log && break; sleep 0.1; done
grep -q "quarns: no reply from the data server: the connexion is closed" crash.log || fail "crash: quarns message"
exit 0
