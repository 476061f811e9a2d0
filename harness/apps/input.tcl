# A page of text that tells on standard output what the user does to it, and shows the lines of its standard input.
wm title . target
wm geometry . 480x320+100+90
proc say {text} {
    puts $text
    flush stdout
}
proc modifiers {state} {
    return "[expr {$state & 1 ? {+shift} : {}}][expr {$state & 4 ? {+control} : {}}]"
}
pack [text .page -font {Courier 12} -yscrollcommand {tell_scroll}] -fill both -expand true
.page insert end [string repeat "mirror window pinned floating panel\n" 60]
place [button .press -text "Press" -command {say pressed}] -x 30 -y 260 -width 120 -height 30
menu .menu -tearoff false
.menu add command -label "A single item" -command {say item}
proc tell_scroll {first last} {
    say "scrolled [expr {int($first * 10000)}]"
}
foreach button {1 2 3} {
    bind .page <ButtonPress-$button> "+say down$button\[modifiers %s\]"
    bind .page <Double-ButtonPress-$button> "+say double$button"
    bind .page <Triple-ButtonPress-$button> "+say triple$button"
    bind .page <ButtonRelease-$button> "+say up$button"
}
bind .page <B1-Motion> {+say motion}
bind .page <<Selection>> {
    if {[.page tag ranges sel] ne ""} {
        say "selected [list [.page get sel.first sel.last]]"
    }
}
bind .page <ButtonPress-3> {+tk_popup .menu %X %Y}
fconfigure stdin -blocking false
fileevent stdin readable {
    if {[gets stdin line] >= 0} {
        .page insert 1.0 "$line\n"
    } elseif {[eof stdin]} {
        exit
    }
}
