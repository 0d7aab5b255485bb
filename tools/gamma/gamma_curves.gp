# Plots the four gamma curves (Parts 2.1, 2.2, 3.4) for docs/tuning.md; see docs/tuning.md, "Gamma curves".
#   python3 tools/gamma/gen_gamma.py --data /tmp/gamma_curves.dat
#   gnuplot -e "datafile='/tmp/gamma_curves.dat'" -e "outfile='docs/img/gamma_curves.png'" tools/gamma/gamma_curves.gp
if (!exists("datafile")) datafile = "gamma_curves.dat"
if (!exists("outfile")) outfile = "gamma_curves.png"

set terminal pngcairo size 1400,560 font "DejaVu Sans,10"
set output outfile
set multiplot layout 1,2 title "isptune gamma curves: output level (12-bit) against node n (input n x 16)"
set grid
set key left top
set xrange [0:256]
set xtics 32

set title "The four curves"
set xlabel "node"
set ylabel "output"
set yrange [0:4095]
plot datafile using 1:2 with lines lw 2 lc rgb "#d95f02" title "g\\_gamma\\_table\\_day", \
     datafile using 1:4 with lines lw 1 dt 2 lc rgb "#d95f02" title "g\\_gamma\\_table\\_day\\_highgain", \
     datafile using 1:3 with lines lw 2 lc rgb "#1b9e77" title "g\\_gamma\\_table\\_night", \
     datafile using 1:5 with lines lw 1 dt 2 lc rgb "#1b9e77" title "g\\_gamma\\_table\\_night\\_highgain"

set title "Differences between curves"
set key right top
set ylabel "output difference"
set yrange [-320:320]
set ytics 80
plot datafile using 1:($4-$2) with lines lw 2 lc rgb "#d95f02" title "day\\_highgain - day (max +298, min -27)", \
     datafile using 1:($5-$3) with lines lw 2 lc rgb "#1b9e77" title "night\\_highgain - night (min -80)", \
     datafile using 1:($3-$2) with lines lw 1 lc rgb "#7570b3" title "night - day", \
     0 with lines lc rgb "black" notitle
unset multiplot
