# Drawn by scripts/benchmark --plot, which sets folder to where the figures are.
set terminal svg size 900,560 font "sans-serif,14" background "white"
set logscale xy
set format x "10^{%T}"
set format y "10^{%T}"
set xlabel "records in the reply or event"
set ylabel "CPU time, microseconds"
set key outside right top
set grid
works = "01_volume_reply 02_NAS_server_reply 03_recording-group_reply 04_tree_filling 05_group_volume_models \
07_the_whole_event 09_groups_by_id"
plain = "01_volume_reply 04_tree_filling 07_the_whole_event"
name(work) = system("echo '".work[4:*]."' | tr _ ' '")
plot for [work in works] folder."/".work."-ours.dat" with linespoints title name(work), \
     for [work in plain] folder."/".work."-plain.dat" with linespoints dashtype 2 title name(work).", plain"
