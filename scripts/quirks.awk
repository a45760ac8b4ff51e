# scripts/quirks.awk: prints each sentence that begins "Quirk:" in a header's comments, with its place.
function flush_quirk() {
  if (quirk != "") printf "%s\n  %s\n", place, quirk
  quirk = ""
}
FNR == 1 { flush_quirk() }
{
  is_comment = match($0, /^[ \t]*\/\/ ?/) || match($0, /[ \t]\/\/ /)
  text = is_comment ? substr($0, RSTART + RLENGTH) : ""
  starts = is_comment && text ~ /Quirk:/
  if (starts) {
    flush_quirk()
    place = FILENAME ":" FNR
    quirk = substr(text, index(text, "Quirk:"))
  } else if (quirk != "") {
    if (is_comment && text != "" && $0 ~ /^[ \t]*\/\//) quirk = quirk " " text
    else flush_quirk()
  }
}
END { flush_quirk() }
