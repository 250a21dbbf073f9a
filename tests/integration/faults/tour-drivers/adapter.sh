# An adapter that starts at once: every parameter has the value that was written last.
value=21
echo '{"type":"hello","version":1}'
while read -r line; do
    id=${line#*\"id\":}
    id=${id%%[!0-9]*}
    case $line in
        *\"write\"*)
            value=${line#*\"value\":}
            value=${value%%[!0-9]*}
            ;;
    esac
    [ -z "$id" ] || printf '{"type":"result","id":%s,"value":%s}\n' "$id" "$value"
done
