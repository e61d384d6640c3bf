# Drawn by scripts/benchmark --plot, which sets folder to where the figures are.
set terminal svg size 900,560 font "sans-serif,14" background "white"
set logscale xy
set format x "10^{%T}"
set format y "10^{%T}"
set xlabel "records in the reply or event"
set ylabel "CPU time, microseconds"
set key outside right top
set grid
file(name) = folder."/".name.".dat"
plot file("01-ours") with linespoints title "volumes", \
     file("02-ours") with linespoints title "NAS servers", \
     file("03-ours") with linespoints title "recording groups", \
     file("04-ours") with linespoints title "tree", \
     file("05-ours") with linespoints title "group volumes", \
     file("07-ours") with linespoints title "whole event", \
     file("09-ours") with linespoints title "groups by id", \
     file("01-plain") with linespoints dashtype 2 title "volumes, plain", \
     file("04-plain") with linespoints dashtype 2 title "tree, plain", \
     file("07-plain") with linespoints dashtype 2 title "whole event, plain"
