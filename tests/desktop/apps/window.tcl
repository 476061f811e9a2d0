# A window that shows the lines of its standard input.
wm title . [lindex $argv 0]
wm geometry . 480x320+100+90
pack [listbox .lines -font {Helvetica 14}] -fill both -expand true
.lines insert end "Tk"
fconfigure stdin -blocking false
fileevent stdin readable {
    if {[gets stdin line] >= 0} {
        .lines insert 0 $line
    } elseif {[eof stdin]} {
        exit
    }
}
