# Sourced by the recorder benchmarks: measure_while_switching PID SECONDS
# SWITCH_SECONDS WINDOW_A WINDOW_B activates the two windows in turn every
# SWITCH_SECONDS for SECONDS and sets, for process PID, $elapsed (seconds),
# $cpu_ticks_used and $ticks_per_second, and $peak_kb and $rss_kb (resident
# memory at the end). report_resources LABEL TARGETS prints them.
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

# report_resources LABEL CPU_TARGET: what measure_while_switching measured,
# with the CPU time per hour extrapolated from the measured stretch.
report_resources() {
    awk -v ticks="$cpu_ticks_used" -v hz="$ticks_per_second" -v elapsed="$elapsed" \
        -v peak="$peak_kb" -v rss="$rss_kb" -v every="$switch_seconds" -v label="$1" \
        -v target="$2" 'BEGIN {
        cpu = ticks / hz
        printf "%s over %d s with a window switch every %d s:\n", label, elapsed, every
        printf "  resident memory: %.1f MB now, %.1f MB peak (target under 25 MB)\n", rss / 1024, peak / 1024
        printf "  CPU: %.2f s measured, %.2f s per hour extrapolated (target %s)\n", cpu, cpu / elapsed * 3600, target
    }'
}
