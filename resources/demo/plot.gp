# Draws dry.*, wet.* and response.* of `folder` (columns of plot_data) as one picture, `picture`,
# about the preset `name`.
set terminal pngcairo size 1500,1080 background rgb "#14171c" font "DejaVu Sans,11"
set output picture
set multiplot
stats folder . "/wet.envelope" using 1 nooutput
longest = STATS_max
stats folder . "/response.envelope" using 1 nooutput
response = STATS_max

text = "#d8d2c4"
faint = "#3a3f47"
accent = "#f0a030"
cool = "#5fa8c8"
set border 3 linecolor rgb faint
set tics nomirror textcolor rgb text scale 0.5
set xlabel textcolor rgb text offset 0,0.4
set ylabel textcolor rgb text offset 1,0
set title textcolor rgb text offset 0,-0.5
set key textcolor rgb text
set grid linecolor rgb faint linewidth 0.5
set palette defined (0 "#14171c", 0.3 "#3b2a4a", 0.55 "#9a3d52", 0.8 "#f0a030", 1 "#fff4d0")
unset colorbox
set style fill solid 1 noborder
set label 1 "Tolmara, preset \"" . name . "\"" at screen 0.055,0.972 front textcolor rgb text \
    font "DejaVu Sans,15"

# Three rows: waveform left, spectrogram right; dry and wet share their time axis.
name_of(r) = word("dry wet response", r)
max(a, b) = a > b ? a : b
dB(x) = x > 1e-5 ? 20 * log10(x) : -100
titles = "'Dry' 'Reverberated' 'Impulse response'"
bottom(r) = 0.765 - 0.235 * (r - 1)
height = 0.16
do for [r = 1:3] {
  set tmargin at screen bottom(r) + height
  set bmargin at screen bottom(r)
  last = r < 3 ? longest : response
  set xrange [0:last]
  set lmargin at screen 0.055
  set rmargin at screen 0.48
  set title word(titles, r)
  set xlabel "seconds"
  if (r < 3) {
    set ylabel "amplitude"
    set yrange [-1:1]
    plot folder . "/" . name_of(r) . ".envelope" using 1:2:3 with filledcurves \
         linecolor rgb (r == 1 ? cool : accent) notitle
  } else {
    # The direct sound towers over the reflections, so that only decibels show both.
    set ylabel "dB"
    set yrange [-100:0]
    plot folder . "/response.envelope" using 1:(dB(max($3, -$2))):(-100) with filledcurves \
         linecolor rgb accent notitle
  }
  set lmargin at screen 0.555
  set rmargin at screen 0.985
  unset label 1
  set title "Spectrogram"
  set ylabel "Hz"
  set yrange [60:18000]
  set logscale y
  set ytics (100, 300, "1k" 1000, "3k" 3000, "10k" 10000)
  set cbrange [-100:-20]
  if (r == 3) { set cbrange [*:*] }
  set pm3d map corners2color c1
  splot folder . "/" . name_of(r) . ".spectrogram" using 1:2:($3 < -120 ? -120 : $3) with pm3d notitle
  unset pm3d
  unset logscale y
  set ytics auto
}

# Below: level over time, and the decay curve of the response.
set tmargin at screen 0.215
set bmargin at screen 0.055
set lmargin at screen 0.055
set rmargin at screen 0.48
set title "Level"
set ylabel "dB"
set xrange [0:longest]
set yrange [-90:0]
plot folder . "/dry.level" with lines linecolor rgb cool linewidth 1.5 title "dry", \
     folder . "/wet.level" with lines linecolor rgb accent linewidth 1.5 title "reverberated"
set lmargin at screen 0.555
set rmargin at screen 0.985
set title "Decay of the response: energy still to come"
set xrange [0:response]
set yrange [-80:0]
plot folder . "/response.decay" with lines linecolor rgb accent linewidth 2 notitle
unset multiplot
stats folder . "/wet.envelope" using 1 nooutput
longest = STATS_max
stats folder . "/response.envelope" using 1 nooutput
response = STATS_max
