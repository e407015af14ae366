#!/usr/bin/env bash
# one-node-slurm.sh COMMAND...: runs a command with a Slurm cluster of this one machine, on the
# loopback interface, to try the workflow under a real scheduler. Everything the cluster writes lies in
# a temporary folder and its daemons end with the command; a Slurm that runs here already stays
# untouched. Needs root, because Slurm's daemons do.
set -euo pipefail

[ $# -gt 0 ] || { sed -n '2,5s/^# //p' "$0"; exit 2; }
[ "$(id -u)" -eq 0 ] || { echo "one-node-slurm.sh: start it as root" >&2; exit 1; }
"$(dirname "${BASH_SOURCE[0]}")/install_packages.sh" slurm-wlm munge

folder=$(mktemp --directory --tmpdir one-node-slurm.XXXXXX)
chmod 755 "$folder"
mkdir -m 755 "$folder"/{munge,spool,state,log}
port=$((20000 + $$ % 20000))

# The daemons are ended by the numbers that they left.
finish() {
    local name pid
    for name in slurmd slurmctld munged; do
        pid=$(cat "$folder/$name.pid" 2>/dev/null || cat "$folder/munge/$name.pid" 2>/dev/null || true)
        [ -z "$pid" ] || kill "$pid" 2>/dev/null || true
    done
    sleep 1
    if [ -n "${KEEP_LOGS:-}" ]; then cp -r "$folder/log" "$KEEP_LOGS"; fi
    rm -rf "$folder"
}
trap finish EXIT

head --bytes=1024 /dev/urandom >"$folder/munge/key"
chmod 600 "$folder/munge/key"
munged --force --key-file="$folder/munge/key" --socket="$folder/munge/socket" \
    --pid-file="$folder/munge/munged.pid" --seed-file="$folder/munge/seed" \
    --log-file="$folder/log/munged.log" 2>/dev/null

node=$(hostname -s)
export SLURM_CONF=$folder/slurm.conf
cat >"$SLURM_CONF" <<CONF
ClusterName=one_node
SlurmctldHost=$node(127.0.0.1)
SlurmctldPort=$port
SlurmdPort=$((port + 1))
SlurmUser=root
AuthType=auth/munge
AuthInfo=socket=$folder/munge/socket
CredType=cred/munge
StateSaveLocation=$folder/state
SlurmdSpoolDir=$folder/spool
SlurmctldPidFile=$folder/slurmctld.pid
SlurmdPidFile=$folder/slurmd.pid
SlurmctldLogFile=$folder/log/slurmctld.log
SlurmdLogFile=$folder/log/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU_Memory
ReturnToService=2
MpiDefault=none
NodeName=$node NodeAddr=127.0.0.1 CPUs=$(nproc) RealMemory=$(awk '/^MemTotal/ { print int($2 / 1024 * 0.9) }' /proc/meminfo)
PartitionName=all Nodes=$node Default=YES MaxTime=INFINITE State=UP
CONF
slurmctld -c
slurmd -c

for ((tries = 0; tries < 60; ++tries)); do
    [ "$(sinfo --noheader --format=%t 2>/dev/null)" = idle ] && break
    sleep 1
done
sinfo --noheader --format="Slurm has %D node, %c CPUs, %m MB: %t" >&2
"$@"
