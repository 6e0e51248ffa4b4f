# Makes the metainfo's releases of CHANGELOG.md, whose headings are "## VERSION, DATE". What is not
# released yet is a development release: `version`, of `date`.

function closeItem() { if (item != "") print "          <li>" item "</li>"; item = "" }
function closeList() { closeItem(); if (inList) print "        </ul>"; inList = 0 }
function closeRelease() { closeList(); if (inRelease) print "      </description>\n    </release>"; inRelease = 0 }

{ gsub(/&/, "\\&amp;"); gsub(/</, "\\&lt;"); gsub(/>/, "\\&gt;"); gsub(/`/, "") }
/^## / {
    closeRelease()
    kind = $2 == "Unreleased" ? "development" : "stable"
    if (kind == "stable") { version = $2; date = $3; sub(/,/, "", version) }
    printf "    <release version=\"%s\" date=\"%s\" type=\"%s\">\n      <description>\n", version, date, kind
    inRelease = 1
    next
}
!inRelease || NF == 0 { next }
/^### / { closeList(); print "        <p>" substr($0, 5) "</p>\n        <ul>"; inList = 1; next }
/^- / { closeItem(); item = substr($0, 3); next }
{ sub(/^ +/, ""); item = item " " $0 }
END { closeRelease() }
