# A button and a page to scroll. Tells on standard output when one of them is used.
wm title . page
wm geometry . 480x320+140+120
set count 0
proc say {text} {
    puts $text
    flush stdout
}
proc label {} {
    return "Pressed $::count times"
}
button .button -text [label] -font {Helvetica 14} -command {
    incr count
    .button configure -text [label]
    say pressed
}
text .page -font {Courier 12} -yscrollcommand {apply {{first last} {
    if {$first > 0} {
        say scrolled
    }
}}}
for {set line 1} {$line <= 200} {incr line} {
    .page insert end "line $line of a long page\n"
}
place .button -x 0 -y 0 -relwidth 1 -height 60
place .page -x 0 -y 60 -relwidth 1 -relheight 1 -height -60
