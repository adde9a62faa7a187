# Draws docs/images/volcano.png from the repository's root, after
#   krige predict examples/volcano/samples.csv --inputs x,y --outputs elevation --grid x=0:860:345,y=0:600:241 -o surface.csv
# with   gnuplot docs/images/volcano.gp
set terminal pngcairo size 1000,700 font "sans,13"
set output "docs/images/volcano.png"
set datafile separator comma
set size ratio -1
set xrange [0:860]
set yrange [0:600]
set xlabel "x [m]"
set ylabel "y [m]"
set cblabel "elevation [m]"
set tics out nomirror
set palette defined (0 "#440154", 1 "#472d7b", 2 "#3b528b", 3 "#2c728e", 4 "#21918c", 5 "#28ae80", 6 "#5ec962", 7 "#addc30", 8 "#fde725")
unset key
set title "300 samples (points) and the estimated surface"
plot "surface.csv" every ::1 using 1:2:3 with image notitle, \
     "examples/volcano/samples.csv" every ::1 using 1:2 with points pt 6 ps 0.6 lc rgb "#ffffff" notitle, \
     "examples/volcano/samples.csv" every ::1 using 1:2 with points pt 7 ps 0.25 lc rgb "#000000" notitle
