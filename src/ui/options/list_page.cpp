#include "ui/options/list_page.h"

#include "res/resource.h"

namespace tessary {

void ListPage::AttachControls() {
    GeneralSettings& general = Options().general;
    Fields().Check(checkListNeighbours, general.listNeighbours);
    Fields().Choice(combListOrder,
                    {L"名前", L"見つかった順", L"更新日時", L"サイズ", L"種類", L"ランダム"},
                    general.listOrder);
    Fields().Check(checkListDescending, general.listDescending);
    Fields().Choice(combUnclaimed,
                    {L"一覧に入れて、中身も調べる", L"一覧に入れて、素通りする", L"一覧に入れない"},
                    general.unclaimed);
    Fields().Check(checkShortList, general.shortList);
    Fields().Choice(combAtListEnd,
                    {L"先頭では選択を外し、末尾では最後のファイルを選ぶ", L"そこで止まる",
                     L"反対側の端へ回る", L"隣のフォルダへ進む"},
                    general.atListEnd);
    Fields().Check(checkBackToLast, general.backToLast);
    Fields().Check(checkSpaceScrolls, general.spaceScrolls);
    Fields().Check(checkRemember, Options().remembers);
    Fields().Check(checkGoOnAtOnce, general.goOnAtOnce);
    Fields().Choice(combDeleteFinally,
                    {L"ごみ箱に移動する", L"削除リストに集めて、まとめて完全に削除する",
                     L"確認してから、完全に削除する"},
                    general.deleteFinally);
}

void ListPage::ShowState() {
    Fields().SetEnabled({checkGoOnAtOnce}, Options().remembers);
}

}  // namespace tessary
