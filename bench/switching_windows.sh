# Sourced by the recorder benchmarks: measure_while_switching PID SECONDS
# SWITCH_SECONDS WINDOW_A WINDOW_B activates the two windows in turn every
# SWITCH_SECONDS for SECONDS and sets, for process PID, $elapsed (seconds),
# $cpu_ticks_used and $ticks_per_second, and $peak_kb and $rss_kb (resident
# memory at the end).
measure_while_switching() {
    local pid=$1 seconds=$2 every=$3 windows=("$5" "$4") switches=0 start start_ticks
    ticks_per_second=$(getconf CLK_TCK)
    start_ticks=$(awk '{print $14 + $15}' "/proc/$pid/stat")
    start=$SECONDS
    while ((SECONDS - start < seconds)); do
        sleep "$every"
        activate "${windows[switches % 2]}"
        switches=$((switches + 1))
    done
    elapsed=$((SECONDS - start))
    cpu_ticks_used=$(($(awk '{print $14 + $15}' "/proc/$pid/stat") - start_ticks))
    peak_kb=$(awk '/VmHWM/ {print $2}' "/proc/$pid/status")
    rss_kb=$(awk '/VmRSS/ {print $2}' "/proc/$pid/status")
}
