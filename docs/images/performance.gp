# Draws docs/images/performance.png from the repository's root; script/bench writes the times that it reads:
#   gnuplot -e "curve='build/bench/curve.txt'" docs/images/performance.gp
set terminal pngcairo size 1000,700 font "sans,13"
set output "docs/images/performance.png"
set logscale xy
set xlabel "samples"
set ylabel "seconds, one core"
set title "10 000 targets in two inputs, estimates: reading, building, estimating and writing"
set grid xtics ytics lt 1 lw 1 lc rgb "#dddddd"
set tics out nomirror
set key top left
set format y "%g"
set xrange [80:130000]
array colours = ["#440154", "#2c8ecf", "#21914c", "#d95f02"]
stats curve using 1:2 nooutput
last = STATS_blocks - 1
plot for [i = 0:last] curve index i using 1:2:3:4 with yerrorlines lw 2 pt 7 ps 0.9 lc rgb colours[i + 1] \
         title columnheader(1), \
     for [i = 0:last] curve index i using 1:2:5 with labels offset 0,-1 font "sans,10" tc rgb colours[i + 1] notitle
